#include "TextRowsItem.h"

#include "FontMetricsCache.h"

#include <QPainter>
#include <QQmlInfo>
#include <QQuickWindow>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <utility>

TextRowsItem::TextRowsItem(double rowSpacing, QQuickItem *parent)
    : QQuickItem(parent)
    , m_rowSpacing(rowSpacing)
{
    setFlag(ItemHasContents);
}

void TextRowsItem::setWrapWidth(double width)
{
    if (m_wrapWidth == width)
        return;
    m_wrapWidth = width;
    Q_EMIT wrapWidthChanged();
    if (!isComponentComplete())
        return;
    for (PlacedRow &placed : m_rows)
        placed.row.breakLines(width);
    placeRows(0);
}

void TextRowsItem::setTrackedItem(TrackedItem *item)
{
    if (m_trackedItem == item)
        return;
    if (m_trackedItem)
        m_trackedItem->disconnect(this);
    m_trackedItem = item;
    if (m_trackedItem)
        connect(m_trackedItem, &TrackedItem::nearBandChanged, this, &QQuickItem::polish);
    polish();
    Q_EMIT trackedItemChanged();
}

void TextRowsItem::setColor(QColor color)
{
    TextColors colors = m_colors;
    colors.text = color;
    setColors(colors);
}

void TextRowsItem::setColors(const TextColors &colors)
{
    if (m_colors == colors)
        return;
    m_colors = colors;
    m_tileCache.invalidateAll();
    polish();
    Q_EMIT colorsChanged();
}

QString TextRowsItem::plainText() const
{
    QStringList lines;
    lines.reserve(rowCount());
    for (const PlacedRow &placed : m_rows)
        lines.append(placed.row.text().text);
    return lines.join(u'\n');
}

double TextRowsItem::lineHeight(double points, int weight)
{
    return FontMetricsCache::of(points, QFont::Weight(weight)).lineHeight();
}

void TextRowsItem::scheduleRows()
{
    m_rowsAreStale = true;
    polish();
}

void TextRowsItem::replaceRows(qsizetype first, std::vector<TextRow> rows)
{
    m_rows.erase(m_rows.begin() + first, m_rows.end());
    for (TextRow &row : rows) {
        if (m_wrapWidth > 0)
            row.breakLines(m_wrapWidth);
        m_rows.push_back({.row = std::move(row)});
    }
    placeRows(first);
    tellPlainText(first);
}

void TextRowsItem::placeRows(qsizetype first)
{
    const double oldHeight = implicitHeight();
    double top = first > 0 ? m_rows[first - 1].bottom() + m_rowSpacing : 0;
    double widest = first > 0 ? m_rows[first - 1].widest : 0;
    const double firstTop = top;
    for (auto placed = m_rows.begin() + first; placed != m_rows.end(); ++placed) {
        placed->top = top;
        placed->widest = widest = std::max(widest, placed->row.width());
        top = placed->bottom() + m_rowSpacing;
    }
    const double height = m_rows.empty() ? 0 : m_rows.back().bottom();
    m_tileCache.invalidate({firstTop, std::max(oldHeight, height)});
    polish();
    setImplicitSize(std::ceil(widest), height);
}

void TextRowsItem::tellPlainText(qsizetype firstChanged)
{
    constexpr int tellInterval = 1000; // ms

    // A text of which more is to come ends in a line feed, which is an empty row.
    const bool isGrowing = firstChanged > 0 && m_rows.back().row.text().text.isEmpty();
    if (!isGrowing)
        m_plainTextTimer.stop();
    m_plainTextIsUntold = m_plainTextTimer.isActive();
    if (m_plainTextIsUntold)
        return;
    if (isGrowing)
        m_plainTextTimer.start(tellInterval, this);
    Q_EMIT plainTextChanged();
}

void TextRowsItem::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_plainTextTimer.timerId())
        return QQuickItem::timerEvent(event);
    m_plainTextTimer.stop();
    if (m_plainTextIsUntold)
        tellPlainText(rowCount());
}

void TextRowsItem::repaintRows(qsizetype first, qsizetype last)
{
    m_tileCache.invalidate({m_rows.at(first).top, m_rows.at(last).bottom()});
    polish();
}

TextPosition TextRowsItem::positionAt(QPointF point) const
{
    if (m_rows.empty())
        return {};
    const auto placed = rowAt(point.y());
    return {placed - m_rows.begin(), placed->row.positionAt(point - QPointF(0, placed->top))};
}

TextPosition TextRowsItem::characterAt(QPointF point) const
{
    if (m_rows.empty())
        return {};
    const auto placed = rowAt(point.y());
    return {placed - m_rows.begin(), placed->row.characterAt(point - QPointF(0, placed->top))};
}

TextRowsItem::Rows::const_iterator TextRowsItem::rowAt(double y) const
{
    const auto after = std::ranges::upper_bound(m_rows, y, {}, &PlacedRow::top);
    return after == m_rows.begin() ? after : std::prev(after);
}

void TextRowsItem::componentComplete()
{
    QQuickItem::componentComplete();
    m_rowsAreStale = false;
    updateRows();
}

void TextRowsItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        polish();
}

VerticalBand TextRowsItem::nearBand() const
{
    if (!m_trackedItem)
        return {0, implicitHeight()};
    const double offset = mapFromItem(m_trackedItem, QPointF()).y();
    const VerticalBand band = m_trackedItem->nearBand();
    return {band.top + offset, band.bottom + offset};
}

void TextRowsItem::warnIfUntracked()
{
    const bool isTracked = m_trackedItem && m_trackedItem->tracker();
    if (!isTracked && !std::exchange(m_hasWarned, true))
        qmlWarning(this) << "no ViewportTracker tracks this text, so all of it is painted";
}

void TextRowsItem::updatePolish()
{
    if (std::exchange(m_rowsAreStale, false))
        updateRows();
    if (!window())
        return;
    warnIfUntracked();
    const double ratio = window()->effectiveDevicePixelRatio();
    const bool isRepainted = m_tileCache.update(
        nearBand(), {implicitWidth(), implicitHeight()}, ratio,
        [this](QPainter &painter, VerticalBand band) { paint(painter, band); });
    const bool isShifted = m_tileCache.setOffset(offsetToWholePixels(ratio));
    if (isRepainted || isShifted)
        update();
}

QPointF TextRowsItem::offsetToWholePixels(double ratio) const
{
    const QPointF pixels = mapToScene({}) * ratio;
    return (QPointF(std::round(pixels.x()), std::round(pixels.y())) - pixels) / ratio;
}

void TextRowsItem::paint(QPainter &painter, VerticalBand band) const
{
    const TextSpan selected = selection();
    for (auto placed = rowAt(band.top); placed != m_rows.end() && placed->top < band.bottom;
         ++placed) {
        const TextRange range
            = selected.inRow(placed - m_rows.begin(), placed->row.text().text.size());
        placed->row.draw(painter, {0, placed->top},
                         {band.top - placed->top, band.bottom - placed->top}, m_colors, range);
    }
}

QSGNode *TextRowsItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    return m_tileCache.synchronize(node, window());
}
