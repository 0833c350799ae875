#include "BottomScroller.h"

#include "FrameThrottle.h"

#include <QQuickWindow>
#include <QTimer>

#include <algorithm>

BottomScroller::BottomScroller(QQuickItem *parent)
    : QQuickItem(parent)
{
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setDuration(duration);
    m_animation.setEasingCurve(QEasingCurve::OutQuad);
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &progress) { step(progress.toDouble()); });
}

void BottomScroller::scrollToBottom()
{
    QTimer::singleShot(delay, Qt::PreciseTimer, this, &BottomScroller::awaitLayout);
}

void BottomScroller::awaitLayout()
{
    if (m_awaitedWindow || !window())
        return;
    m_awaitedWindow = window();
    connect(m_awaitedWindow, &QQuickWindow::afterAnimating, this,
            &BottomScroller::layoutIsFinished);
    if (m_animation.state() != QAbstractAnimation::Running)
        m_awaitedWindow->update();
}

bool BottomScroller::hasJustBegun() const
{
    return m_animation.state() != QAbstractAnimation::Stopped
        && m_animation.currentTime() < FrameThrottle::interval;
}

void BottomScroller::layoutIsFinished()
{
    if (hasJustBegun())
        return;
    m_awaitedWindow->disconnect(this);
    m_awaitedWindow.clear();
    if (!m_flickable || !m_end)
        return;
    m_from = m_flickable->property("contentY").toDouble();
    if (m_animation.state() == QAbstractAnimation::Running)
        m_animation.setCurrentTime(0);
    else
        m_animation.start();
}

void BottomScroller::step(double progress)
{
    if (m_awaitedWindow && hasJustBegun())
        return;
    if (m_flickable && m_end) {
        // The list may have more or less room by now.
        const double to = std::max(0.0, m_end->y() + m_end->height() - m_flickable->height());
        m_flickable->setProperty("contentY", m_from + (to - m_from) * progress);
    }
    if (m_awaitedWindow)
        m_awaitedWindow->update();
}
