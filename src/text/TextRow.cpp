#include "TextRow.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace {
bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t';
}

QChar shownControl(QChar c)
{
    constexpr char16_t nextLine = 0x85;
    const bool breaksLines = (c >= u'\n' && c <= u'\r') || c == QChar(nextLine);
    return breaksLines ? QChar(QChar::Space) : QChar(QChar::ReplacementCharacter);
}

// The same length as `text`, so that positions and runs hold.
QString shownText(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = std::as_const(text)[i];
        if (c.isHighSurrogate() && i + 1 < text.size()
            && std::as_const(text)[i + 1].isLowSurrogate())
            ++i;
        else if (c.isSurrogate())
            text[i] = QChar::ReplacementCharacter;
        else if (isControl(c))
            text[i] = shownControl(c);
    }
    return text;
}
} // namespace

TextRow::TextRow(AttributedText text, Marker marker)
    : m_text(std::move(text))
    , m_marker(marker)
{
    const QString shown = shownText(m_text.text);
    if (shown != m_text.text)
        m_original = std::exchange(m_text.text, shown);
    m_direction = m_text.text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
}

TextRow TextRow::spacer(double height)
{
    TextRow row;
    row.m_spacerHeight = height;
    return row;
}

void TextRow::breakLines(double width)
{
    if (isSpacer())
        return;
    m_lines = ::breakLines(m_text, m_direction, width - indent());
    m_width = indent() + std::ranges::max(m_lines, {}, &TextLine::width).width;
}

double TextRow::height() const
{
    if (m_spacerHeight)
        return *m_spacerHeight;
    return m_lines.isEmpty() ? 0 : m_lines.last().top + m_lines.last().height;
}

void TextRow::draw(QPainter &painter, QPointF topLeft, VerticalBand band, const TextColors &colors,
                   TextRange selection) const
{
    if (m_lines.isEmpty())
        return;
    if (m_marker == Marker::dot) {
        // A shape's baseline is its lower edge, and the two share theirs.
        const QRectF dot(topLeft + QPointF(0, m_lines.first().ascent - dotSize),
                         QSizeF(dotSize, dotSize));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.dot);
        painter.drawEllipse(dot);
    }
    painter.setPen(colors.text);
    for (auto line = lineAt(band.top); line != m_lines.end() && line->top < band.bottom; ++line) {
        const auto layout = shapedLine(m_text, m_direction, *line);
        const qsizetype from = std::max(selection.start, line->start) - line->start;
        const qsizetype to
            = std::min(selection.end - line->start, qsizetype(layout->text().size()));
        QList<QTextLayout::FormatRange> selections;
        if (from < to) {
            QTextCharFormat format;
            format.setBackground(colors.selection);
            selections.append({int(from), int(to - from), format});
        }
        layout->draw(&painter, topLeft + QPointF(indent(), line->top), selections);
    }
}

qsizetype TextRow::positionAt(QPointF point) const
{
    if (m_lines.isEmpty())
        return 0;
    return offsetAt(*lineAt(point.y()), point.x(), QTextLine::CursorBetweenCharacters);
}

qsizetype TextRow::characterAt(QPointF point) const
{
    if (m_text.text.isEmpty() || m_lines.isEmpty())
        return 0;
    const auto line = lineAt(point.y());
    const qsizetype last = line->start + std::max<qsizetype>(line->length - 1, 0);
    return std::min(offsetAt(*line, point.x(), QTextLine::CursorOnCharacter), last);
}

qsizetype TextRow::offsetAt(const TextLine &line, double x, QTextLine::CursorPosition kind) const
{
    const auto layout = shapedLine(m_text, m_direction, line);
    return line.start + layout->lineAt(0).xToCursor(x - indent(), kind);
}

QList<TextLine>::const_iterator TextRow::lineAt(double y) const
{
    const auto after = std::ranges::upper_bound(m_lines, y, {}, &TextLine::top);
    return after == m_lines.begin() ? after : std::prev(after);
}
