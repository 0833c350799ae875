#include "MarkdownMessageView.h"

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
    // A complete reply loses the line ends and blanks at its end: the rows before them stay.
    if (m_text.startsWith(text) && text.size() < m_validLength) {
        m_validRows -= QStringView(m_text).first(m_validLength).sliced(text.size()).count(u'\n');
        m_validLength = text.lastIndexOf(u'\n') + 1;
    } else if (!m_text.startsWith(text) && !text.startsWith(m_text)) {
        m_validRows = 0;
        m_validLength = 0;
    }
    m_text = text;
    textHasChanged();
}

void MarkdownMessageView::appendText(const QString &piece)
{
    if (piece.isEmpty())
        return;
    m_text += piece;
    textHasChanged();
}

void MarkdownMessageView::textHasChanged()
{
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
    m_validRows = 0;
    m_validLength = 0;
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
    std::vector<TextRow> rows;
    const auto blocks = parseBlocks(QStringView(m_text).sliced(m_validLength));
    rows.reserve(blocks.size());
    for (const MarkdownBlock &block : blocks)
        rows.push_back(rowOf(block, m_textScale));
    replaceRows(m_validRows, std::move(rows));
    // The last line may grow.
    m_validRows = rowCount() - 1;
    m_validLength = m_text.lastIndexOf(u'\n') + 1;
}
