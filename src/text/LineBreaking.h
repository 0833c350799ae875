#pragma once

#include "AttributedText.h"

#include <QList>
#include <QTextLayout>

#include <memory>

/// One line of a row as it is shown. `start` and `length` count UTF-16 units of the row's text,
/// the rest is in points.
struct TextLine
{
    qsizetype start = 0;
    qsizetype length = 0;
    double top = 0; ///< within the row
    double width = 0; ///< without the spaces at its end
    double ascent = 0;
    double height = 0;
    bool isKerned = true;

    bool operator==(const TextLine &) const = default;
};

/// The lines of `text` within `width`: at least one, none wider unless a single character is.
/// Lines end where Unicode lets them, and within a word that alone is too wide. The time is linear
/// in the length of the text, also when it has no space at all; a word of thousands of characters,
/// which is none of any language, is set without kerning and broken anywhere, since its lines are
/// then found by adding up.
QList<TextLine> breakLines(const AttributedText &text, Qt::LayoutDirection direction, double width);

/// `line` of `text`, shaped on one line from x = 0, for drawing and for finding characters. The
/// spaces at its end are left out where they would take a place: those at which the line was
/// broken, and any that would stand before text from right to left.
std::unique_ptr<QTextLayout> shapedLine(const AttributedText &text, Qt::LayoutDirection direction,
                                        const TextLine &line);
