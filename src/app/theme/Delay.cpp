#include "Delay.h"

Delay::Delay(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        Q_EMIT triggered();
        if (!isRunning())
            Q_EMIT runningChanged();
    });
}

void Delay::setInterval(int interval)
{
    if (m_timer.interval() == interval)
        return;
    m_timer.setInterval(interval);
    Q_EMIT intervalChanged();
}

void Delay::restart()
{
    const bool wasRunning = isRunning();
    m_timer.start();
    if (!wasRunning)
        Q_EMIT runningChanged();
}
