#include "EdgeScroller.h"

#include <QQuickItem>

#include <algorithm>

EdgeScroller::EdgeScroller(QQuickItem *item)
    : QObject(item)
    , m_item(item)
{ }

void EdgeScroller::follow(QPointF scenePosition)
{
    constexpr int frameTime = 16; // ms

    if (!m_flickable) {
        QQuickItem *ancestor = m_item->parentItem();
        while (ancestor && !ancestor->inherits("QQuickFlickable"))
            ancestor = ancestor->parentItem();
        m_flickable = ancestor;
    }
    m_scenePosition = scenePosition;
    if (!m_flickable || distanceBeyondEdge() == 0)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(frameTime, this);
}

void EdgeScroller::stop()
{
    m_timer.stop();
}

double EdgeScroller::distanceBeyondEdge() const
{
    const double y = m_flickable->mapFromScene(m_scenePosition).y();
    return std::min(y, 0.0) + std::max(y - m_flickable->height(), 0.0);
}

void EdgeScroller::timerEvent(QTimerEvent *)
{
    constexpr double stepsPerDistance = 0.3;
    constexpr double longestStep = 40;

    if (!m_flickable)
        return m_timer.stop();
    const double end
        = std::max(m_flickable->property("contentHeight").toDouble() - m_flickable->height(), 0.0);
    const double step
        = std::clamp(distanceBeyondEdge() * stepsPerDistance, -longestStep, longestStep);
    const double contentY = m_flickable->property("contentY").toDouble();
    m_flickable->setProperty("contentY", std::clamp(contentY + step, 0.0, end));
    Q_EMIT scrolled(m_scenePosition);
}
