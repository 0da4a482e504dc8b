#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace section
{

/// Measures the steps of the job, and shows on a terminal how far a step has come once the job has
/// taken more than a second.
class Progress
{
public:
    /// One step and the seconds that it has taken.
    using Step = std::pair<std::string, double>;

    /// Ends the running step and begins another one; a step may be taken up again.
    void Begin(const std::string& step);

    /// Shows "what: done of total" when it is time to.
    void Show(const std::string& what, std::size_t done, std::size_t total);

    /// Ends the running step and wipes the line.
    void End();

    /// The steps in the order in which they were first begun.
    [[nodiscard]] const std::vector<Step>& Steps() const
    {
        return _steps;
    }

private:
    using Clock = std::chrono::steady_clock;

    std::vector<Step> _steps;
    std::size_t _current = 0;
    bool _isRunning = false;
    bool _hasLine = false;
    Clock::time_point _begun = Clock::now();
    Clock::time_point _stepBegun = _begun;
    Clock::time_point _shown = _begun;
};

} // namespace section
