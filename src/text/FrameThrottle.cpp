#include "FrameThrottle.h"

#include <utility>

void FrameThrottle::request()
{
    m_isRequested = true;
    if (state() != Running)
        start();
}

void FrameThrottle::markServed()
{
    m_isRequested = false;
    m_lastTime = currentTime();
}

void FrameThrottle::updateCurrentTime(int currentTime)
{
    // At 0 it comes from a rest, and the last time is that of another run.
    if (currentTime > 0 && currentTime - m_lastTime < interval)
        return;
    m_lastTime = currentTime;
    if (std::exchange(m_isRequested, false))
        Q_EMIT due();
    else
        stop();
}
