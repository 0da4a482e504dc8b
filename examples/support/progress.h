#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace example
{

/// Measures the steps of the job, and shows on a terminal which step runs and how far it has come
/// once the job has taken more than half a second.
class Progress
{
public:
    /// One step and the seconds that it has taken.
    using Step = std::pair<std::string, double>;

    Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Wipes the line, also when a failure ends the job.
    ~Progress();

    /// Ends the running step and begins another one; a step may be taken up again.
    void Begin(const std::string& step);

    /// Says how far the job has come, "done of total", until the next such call.
    void Show(std::size_t done, std::size_t total, const char* unit);

    /// Ends the running step.
    void End();

    /// Wipes the line; before anything else is printed.
    void Wipe();

    /// The steps in the order in which they were first begun.
    [[nodiscard]] const std::vector<Step>& Steps() const
    {
        return _steps;
    }

private:
    using Clock = std::chrono::steady_clock;

    void _Draw();

    std::vector<Step> _steps;
    std::string _place;
    std::size_t _current = 0;
    bool _isRunning = false;
    bool _hasLine = false;
    Clock::time_point _begun = Clock::now();
    Clock::time_point _stepBegun = _begun;
    Clock::time_point _shown = _begun;
};

} // namespace example
