#include "FramePace.h"

#include <utility>

void FramePace::request()
{
    m_isRequested = true;
    if (state() != Running)
        start();
}

void FramePace::updateCurrentTime(int)
{
    if (std::exchange(m_isRequested, false))
        Q_EMIT due();
    else
        stop();
}
