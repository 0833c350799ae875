#pragma once

#include <chrono>
#include <ctime>

/// How long something took on the clock, and how much of it the processor worked for us: the
/// difference is what other programs took. In milliseconds.
struct Duration
{
    double elapsed = 0;
    double worked = 0;
};

/// Runs from when it is made.
class Stopwatch
{
public:
    Duration read() const
    {
        using Milliseconds = std::chrono::duration<double, std::milli>;
        return {Milliseconds(Clock::now() - m_start).count(),
                processorMilliseconds() - m_processorStart};
    }

private:
    using Clock = std::chrono::steady_clock;

    static double processorMilliseconds() { return 1000.0 * double(std::clock()) / CLOCKS_PER_SEC; }

    Clock::time_point m_start = Clock::now();
    double m_processorStart = processorMilliseconds();
};
