#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace section
{

void Progress::Begin(const std::string& step)
{
    End();
    const auto found = std::find_if(_steps.begin(), _steps.end(),
                                    [&](const Step& known) { return known.first == step; });
    _current = static_cast<std::size_t>(found - _steps.begin());
    if (found == _steps.end())
        _steps.emplace_back(step, 0.0);
    _stepBegun = Clock::now();
    _isRunning = true;
}

void Progress::Show(const std::string& what, std::size_t done, std::size_t total)
{
    using namespace std::chrono_literals;
    const Clock::time_point now = Clock::now();
    if (now - _begun < 1s || now - _shown < 100ms || isatty(STDERR_FILENO) == 0)
        return;
    _shown = now;
    _hasLine = true;
    std::fprintf(stderr, "\r%s: %zu of %zu\033[K", what.c_str(), done, total);
}

void Progress::End()
{
    if (_isRunning)
        _steps[_current].second += std::chrono::duration<double>(Clock::now() - _stepBegun).count();
    _isRunning = false;
    if (_hasLine)
        std::fputs("\r\033[K", stderr);
    _hasLine = false;
}

} // namespace section
