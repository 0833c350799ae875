// Text on the screen: word widths, line breaking, rows that are painted only near the viewport and
// can be selected. Nothing here knows of messages.
#pragma once

#include <QFont>
#include <QList>
#include <QString>

/// Text in one size whose parts differ in weight.
struct AttributedText
{
    /// A stretch of the text in one weight; `start` and `length` count UTF-16 units.
    struct Run
    {
        qsizetype start = 0;
        qsizetype length = 0;
        QFont::Weight weight = QFont::Normal;

        bool operator==(const Run &) const = default;
    };

    QString text;
    /// In points.
    double size = 0;
    /// They cover the text without gaps; none is empty.
    QList<Run> runs;

    bool operator==(const AttributedText &) const = default;
};
