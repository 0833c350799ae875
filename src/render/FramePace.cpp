#include "FramePace.h"

#include <utility>

void FramePace::request()
{
    m_isRequested = true;
    if (state() != Running)
        start();
}

void FramePace::markServed()
{
    m_isRequested = false;
    m_lastTime = currentTime();
}

void FramePace::updateCurrentTime(int currentTime)
{
    // Two frames of 16 ms, less what a clock of whole milliseconds may be early.
    constexpr int interval = 30;

    if (currentTime > 0 && currentTime - m_lastTime < interval)
        return;
    m_lastTime = currentTime;
    if (std::exchange(m_isRequested, false))
        Q_EMIT due();
    else
        stop();
}
