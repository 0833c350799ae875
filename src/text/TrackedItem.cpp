#include "TrackedItem.h"

TrackedItem::TrackedItem(QQuickItem *parent)
    : QQuickItem(parent)
{ }

TrackedItem::~TrackedItem()
{
    if (m_tracker)
        m_tracker->remove(this);
}

void TrackedItem::setTracker(ViewportTracker *tracker)
{
    if (m_tracker == tracker)
        return;
    if (m_tracker)
        m_tracker->remove(this);
    m_tracker = tracker;
    setNearBand(tracker ? VerticalBand{} : VerticalBand{-everywhere, everywhere});
    if (m_tracker)
        m_tracker->add(this);
    Q_EMIT trackerChanged();
}

void TrackedItem::setNearBand(VerticalBand band)
{
    if (m_nearBand == band)
        return;
    const bool wasNear = isNearViewport();
    m_nearBand = band;
    Q_EMIT nearBandChanged();
    if (wasNear != isNearViewport())
        Q_EMIT nearViewportChanged();
}
