#include "ScrollAnchor.h"

#include "TextRowsItem.h"
#include "TrackedItem.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace {

double topOf(const QQuickItem *item, const QQuickItem *content)
{
    return item->mapToItem(content, QPointF()).y();
}

/// The text of a message, which its attachment's name is not.
const TextRowsItem *selectableText(const QQuickItem *item)
{
    if (const auto *rows = qobject_cast<const TextRowsItem *>(item))
        return rows->isEnabled() ? rows : nullptr;
    const auto children = item->childItems();
    for (const QQuickItem *child : children) {
        if (const auto *rows = selectableText(child))
            return rows;
    }
    return nullptr;
}

} // namespace

ScrollAnchor::ScrollAnchor(QQuickItem *parent)
    : QQuickItem(parent)
{ }

void ScrollAnchor::componentComplete()
{
    QQuickItem::componentComplete();
    if (!m_flickable || !m_content)
        return;
    // By name, since the type of Qt's Flickable is not public.
    connect(m_flickable, SIGNAL(contentYChanged()), this, SLOT(schedule()));
    connect(m_content, &QQuickItem::heightChanged, this, &ScrollAnchor::schedule);
    connect(m_content, &QQuickItem::childrenChanged, this, &ScrollAnchor::schedule);
    connect(m_flickable, &QQuickItem::widthChanged, this, &ScrollAnchor::hold);
    connect(m_flickable, &QQuickItem::heightChanged, this, &ScrollAnchor::hold);
    polish();
}

void ScrollAnchor::hold()
{
    m_isHolding = true;
    m_isRestored = false;
    polish();
}

void ScrollAnchor::updatePolish()
{
    if (!m_flickable || !m_content || !m_end)
        return;
    if (m_isHolding) {
        restore();
        // The frame's layout is over when the event loop comes round.
        if (!std::exchange(m_isRestored, true))
            QMetaObject::invokeMethod(this, &ScrollAnchor::release, Qt::QueuedConnection);
    } else {
        m_place = currentPlace();
    }
}

void ScrollAnchor::release()
{
    if (!m_isRestored)
        return;
    m_isHolding = false;
    if (!m_place.child)
        polish();
}

void ScrollAnchor::restore()
{
    if (!m_place.child)
        return;
    // Until the column has placed its children they lie where they were before.
    QMetaObject::invokeMethod(m_content, "forceLayout");
    m_flickable->setProperty("contentY", std::clamp(contentYFor(m_place), 0.0, lowestContentY()));
}

double ScrollAnchor::contentY() const
{
    return m_flickable->property("contentY").toDouble();
}

double ScrollAnchor::lowestContentY() const
{
    return std::max(0.0, m_flickable->property("contentHeight").toDouble() - m_flickable->height());
}

ScrollAnchor::Place ScrollAnchor::currentPlace() const
{
    const auto children = m_content->childItems();
    const auto shows = [this](const QQuickItem *child) {
        return child != m_end && child->isVisible() && child->height() > 0;
    };
    const double top = contentY();
    const double bottom = top + m_flickable->height();
    constexpr double tolerance = 1;
    const double endBottom = m_end->y() + m_end->height();
    if (bottom >= endBottom - tolerance) {
        const auto backwards = children | std::views::reverse;
        auto last = std::ranges::find_if(backwards, [](const QQuickItem *child) {
            return qobject_cast<const TrackedItem *>(child) != nullptr;
        });
        // What is no message is at its beginning while all of it shows.
        const bool showsAll = lowestContentY() == 0;
        if (last == backwards.end() && !showsAll)
            last = std::ranges::find_if(backwards, shows);
        if (last != backwards.end())
            return {.child = *last,
                    .isAtEnd = true,
                    .distance = (showsAll ? endBottom : bottom) - (*last)->y() - (*last)->height()};
    }

    const auto first = std::ranges::find_if(children, [&](const QQuickItem *child) {
        return shows(child) && child->y() + child->height() > top;
    });
    if (first == children.end())
        return {};
    Place place{.child = *first, .distance = top - (*first)->y()};
    const auto *text = selectableText(*first);
    const double within = text ? top - topOf(text, m_content) : -1;
    if (within >= 0 && text->rowCount() > 0) {
        qsizetype row = 0;
        while (row + 1 < text->rowCount() && text->rowTop(row + 1) <= within)
            ++row;
        place.row = row;
        place.distance = within - text->rowTop(row);
        const auto &lines = text->row(row).lines();
        const auto after = std::ranges::upper_bound(lines, place.distance, {}, &TextLine::top);
        if (after != lines.begin()) {
            place.character = std::prev(after)->start;
            place.distance -= std::prev(after)->top;
        }
    }
    return place;
}

double ScrollAnchor::contentYFor(const Place &place) const
{
    const double childTop = place.child->y();
    if (place.isAtEnd)
        return childTop + place.child->height() + place.distance - m_flickable->height();
    const auto *text = place.row >= 0 ? selectableText(place.child) : nullptr;
    if (!text || place.row >= text->rowCount())
        return childTop + place.distance;
    const double rowTop = topOf(text, m_content) + text->rowTop(place.row);
    const auto &lines = text->row(place.row).lines();
    const auto after = std::ranges::upper_bound(lines, place.character, {}, &TextLine::start);
    if (after == lines.begin())
        return rowTop + place.distance;
    // Smaller text has lower lines.
    const TextLine &line = *std::prev(after);
    return rowTop + line.top + std::min(place.distance, line.height - 1);
}
