#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

/// Tells every waiting thread that the service ends. Safe to use from many threads.
class EndNotice
{
public:
    /// Wakes whoever sleeps; nobody sleeps from then on.
    void announce()
    {
        {
            const std::scoped_lock lock(m_mutex);
            m_isAnnounced = true;
        }
        m_condition.notify_all();
    }

    /// Sleeps until `time` and returns true; false as soon as the end is announced.
    bool sleepUntil(std::chrono::steady_clock::time_point time)
    {
        std::unique_lock lock(m_mutex);
        return !m_condition.wait_until(lock, time, [this] { return m_isAnnounced; });
    }

    bool isAnnounced()
    {
        const std::scoped_lock lock(m_mutex);
        return m_isAnnounced;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isAnnounced = false;
};
