#include "ViewportTracker.h"

#include "TrackedItem.h"

#include <algorithm>
#include <utility>

namespace {
// Added up by hand: mapToItem multiplies the matrices up to the window and back for each item.
double topWithin(const QQuickItem *content, const QQuickItem *item)
{
    double top = 0;
    for (; item && item != content; item = item->parentItem())
        top += item->y();
    return top;
}
} // namespace

void ViewportTracker::setFlickable(QQuickItem *flickable)
{
    if (m_flickable == flickable)
        return;
    if (m_flickable)
        m_flickable->disconnect(this);
    m_flickable = flickable;
    if (m_flickable) {
        // By name, since QQuickFlickable is not public.
        connect(m_flickable, SIGNAL(contentYChanged()), this, SLOT(schedule()));
        connect(m_flickable, &QQuickItem::heightChanged, this, &ViewportTracker::schedule);
    }
    schedule();
    Q_EMIT flickableChanged();
}

void ViewportTracker::setContent(QQuickItem *content)
{
    if (m_content == content)
        return;
    if (m_content)
        m_content->disconnect(this);
    m_content = content;
    if (m_content)
        connect(m_content, &QQuickItem::heightChanged, this, &ViewportTracker::scheduleAfterLayout);
    scheduleAfterLayout();
    Q_EMIT contentChanged();
}

void ViewportTracker::add(TrackedItem *item)
{
    m_items.append(item);
    scheduleAfterLayout();
}

void ViewportTracker::remove(TrackedItem *item)
{
    m_items.removeOne(item);
}

void ViewportTracker::scheduleAfterLayout()
{
    m_awaitsLayout = true;
    schedule();
}

void ViewportTracker::updatePolish()
{
    // Painted before it is seen, so that a step of the wheel shows nothing unfinished.
    constexpr double margin = 256;

    if (!m_flickable || !m_content)
        return;
    // Until the column has placed its new items they all lie on top of each other.
    if (std::exchange(m_awaitsLayout, false))
        QMetaObject::invokeMethod(m_content, "forceLayout");
    const double top = m_content->mapFromItem(m_flickable, QPointF()).y() - margin;
    const double bottom = top + m_flickable->height() + 2 * margin;
    const auto items = m_items;
    for (TrackedItem *item : items) {
        const double y = topWithin(m_content, item);
        const VerticalBand near{std::max(top - y, 0.0), std::min(bottom - y, item->height())};
        item->setNearBand(near.isEmpty() ? VerticalBand() : near);
    }
}
