#include "MarkdownMessageView.h"

#include <algorithm>

std::optional<BoldMarkdownText> blockView(const MarkdownBlock &block, double textScale)
{
    using Kind = MarkdownBlock::Kind;
    const auto row = [&](double size, QFont::Weight weight) {
        return BoldMarkdownText{block.text, size * textScale, weight};
    };
    switch (block.kind) {
    case Kind::heading1:
        return row(19, QFont::Bold);
    case Kind::heading2:
        return row(17, QFont::DemiBold);
    case Kind::heading3:
        return row(15.5, QFont::DemiBold);
    case Kind::bullet:
    case Kind::numbered:
    case Kind::paragraph:
        return row(14.5, QFont::Normal);
    case Kind::empty:
        break;
    }
    return std::nullopt;
}

namespace {
TextRow rowOf(const MarkdownBlock &block, double textScale)
{
    const auto view = blockView(block, textScale);
    if (!view)
        return TextRow::spacer(MarkdownMessageView::blankHeight);
    const bool isBullet = block.kind == MarkdownBlock::Kind::bullet;
    return TextRow(makeAttributedText(view->text, view->size, view->baseWeight),
                   isBullet ? TextRow::Marker::dot : TextRow::Marker::none);
}
} // namespace

MarkdownMessageView::MarkdownMessageView(QQuickItem *parent)
    : SelectableText(rowSpacing, parent)
{
    connect(&m_throttle, &FrameThrottle::due, this, &MarkdownMessageView::scheduleRows);
}

void MarkdownMessageView::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    markRowsStale();
    if (isComponentComplete())
        m_throttle.request();
    Q_EMIT textChanged();
}

void MarkdownMessageView::setTextScale(double scale)
{
    if (m_textScale == scale)
        return;
    m_textScale = scale;
    scheduleRows();
    Q_EMIT textScaleChanged();
}

void MarkdownMessageView::setDotColor(QColor color)
{
    TextColors changed = colors();
    changed.dot = color;
    setColors(changed);
}

void MarkdownMessageView::updateRows()
{
    m_throttle.markServed();
    // A reply grows at its end, and loses only line ends there when it is complete: all rows but
    // the last of what both texts share stay.
    const QStringView shared = std::min<QStringView>(
        m_text, m_shownText, [](auto a, auto b) { return a.size() < b.size(); });
    const bool rowsHold = rowCount() > 0 && m_textScale == m_shownScale && m_text.startsWith(shared)
        && m_shownText.startsWith(shared);
    qsizetype firstRow = 0;
    qsizetype firstCharacter = 0;
    if (rowsHold) {
        firstRow = rowCount() - 1 - QStringView(m_shownText).sliced(shared.size()).count(u'\n');
        firstCharacter = shared.lastIndexOf(u'\n') + 1;
    }
    m_shownText = m_text;
    m_shownScale = m_textScale;

    std::vector<TextRow> rows;
    const auto blocks = parseBlocks(QStringView(m_text).sliced(firstCharacter));
    rows.reserve(blocks.size());
    for (const MarkdownBlock &block : blocks)
        rows.push_back(rowOf(block, m_textScale));
    replaceRows(firstRow, std::move(rows));
}
