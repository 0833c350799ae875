#pragma once

#include "LineBreaking.h"
#include "VerticalBand.h"

#include <QColor>
#include <QList>
#include <QPointF>

#include <optional>

class QPainter;

/// A stretch of a row's text in UTF-16 units, `start` included and `end` not.
struct TextRange
{
    qsizetype start = 0;
    qsizetype end = 0;

    bool operator==(const TextRange &) const = default;
};

/// The colours a row is drawn in.
struct TextColors
{
    QColor text;
    QColor selection; ///< behind selected text
    QColor dot;

    bool operator==(const TextColors &) const = default;
};

/// One row of a message: a text, perhaps after a dot, or a blank spacer. It is laid out by
/// `breakLines` and then drawn, measured and asked for positions, all in points from its top left.
class TextRow
{
public:
    enum class Marker { none, dot };

    static constexpr double dotSize = 4;
    static constexpr double dotSpacing = 8;

    /// A row of `text`. Line-break controls are shown as spaces, other control characters and lone
    /// surrogates as U+FFFD.
    explicit TextRow(AttributedText text, Marker marker = Marker::none);
    /// A blank row.
    static TextRow spacer(double height);

    /// As it is shown.
    const AttributedText &text() const { return m_text; }
    /// As it came, character for character in the same places: what copying gives.
    const QString &original() const { return m_original.isNull() ? m_text.text : m_original; }
    Marker marker() const { return m_marker; }
    bool isSpacer() const { return m_spacerHeight.has_value(); }

    void breakLines(double width);
    const QList<TextLine> &lines() const { return m_lines; }
    /// Of the widest line, the marker included.
    double width() const { return m_width; }
    double height() const;

    /// Draws the lines that reach into `band`.
    void draw(QPainter &painter, QPointF topLeft, VerticalBand band, const TextColors &colors,
              TextRange selection) const;

    /// The nearest position between two characters.
    qsizetype positionAt(QPointF point) const;
    /// Where the character at `point` begins, or the nearest one of its line.
    qsizetype characterAt(QPointF point) const;

private:
    TextRow() = default;
    double indent() const { return m_marker == Marker::dot ? dotSize + dotSpacing : 0; }
    QList<TextLine>::const_iterator lineAt(double y) const;
    qsizetype offsetAt(const TextLine &line, double x, QTextLine::CursorPosition kind) const;

    AttributedText m_text;
    QString m_original; ///< null where it is no other than the text that is shown
    Marker m_marker = Marker::none;
    std::optional<double> m_spacerHeight;
    Qt::LayoutDirection m_direction = Qt::LeftToRight;
    QList<TextLine> m_lines;
    double m_width = 0;
};
