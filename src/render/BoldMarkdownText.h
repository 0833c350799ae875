#pragma once

#include "AttributedText.h"

#include <QFont>
#include <QString>

/// One line of a reply, in which pairs of "**" enclose bold spans: what a row of the reply shows.
struct BoldMarkdownText
{
    QString text;
    /// In points, the text scale applied.
    double size = 0;
    /// Outside bold spans.
    QFont::Weight baseWeight = QFont::Normal;

    bool operator==(const BoldMarkdownText &) const = default;
};

/// `text` cut at every "**", found from left to right without overlap; the pieces are in
/// `baseWeight` and in bold by turns, starting with `baseWeight`. Markers never show, and one
/// without a partner makes the rest of the line bold.
AttributedText makeAttributedText(const QString &text, double size, QFont::Weight baseWeight);
