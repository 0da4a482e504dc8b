#include "support/progress.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace example
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
    _Draw();
}

void Progress::Show(std::size_t done, std::size_t total, const char* unit)
{
    _place = std::to_string(done) + " of " + std::to_string(total) + unit;
    _Draw();
}

// Ten times a second at most.
void Progress::_Draw()
{
    using namespace std::chrono_literals;
    const Clock::time_point now = Clock::now();
    if (now - _begun < 500ms || now - _shown < 100ms || isatty(STDERR_FILENO) == 0)
        return;
    _shown = now;
    _hasLine = true;
    const char* const step = _isRunning ? _steps[_current].first.c_str() : "";
    std::fprintf(stderr, "\r%s  %s\033[K", _place.c_str(), step);
}

void Progress::End()
{
    if (_isRunning)
        _steps[_current].second += std::chrono::duration<double>(Clock::now() - _stepBegun).count();
    _isRunning = false;
}

void Progress::Wipe()
{
    if (_hasLine)
        std::fputs("\r\033[K", stderr);
    _hasLine = false;
}

Progress::~Progress()
{
    Wipe();
}

} // namespace example
