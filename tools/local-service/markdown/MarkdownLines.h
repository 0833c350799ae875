#pragma once

#include <QString>
#include <QStringList>

/// One whole block of Markdown (a heading, a paragraph, an item, a table) as lines that the
/// program shows; none is empty. Headings have at most three levels, every bullet is "- ", every
/// row of a table a bullet "Header: value; header: value", what is bold stands between "**", and
/// everything else is text: italics, links, code, formulas.
QStringList markdownLines(const QString &block);

/// `text` so that nothing in it is read as a mark of bold.
QString literalLine(const QString &text);
