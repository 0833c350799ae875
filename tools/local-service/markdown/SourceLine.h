#pragma once

#include <QString>

/// What a line of Markdown begins, as far as its first characters tell.
enum class LineKind {
    /// Too short yet to tell.
    Unknown,
    Blank,
    Heading,
    /// "---" and the like: a rule, or what makes the line above it a heading.
    Rule,
    /// "===" below a heading's text.
    Underline,
    /// What begins or ends lines of code.
    Fence,
    /// "$$" or "\[" without its end on the same line.
    Formula,
    Item,
    Text,
};

/// Whether all of a line is known, or only its beginning.
enum class LineExtent {
    Whole,
    Beginning,
};

/// One line of Markdown without its indentation and the marks of quotes around it.
struct SourceLine
{
    LineKind kind = LineKind::Unknown;
    int quoteDepth = 0;
    QString text;
};

/// How `line`, which has no line end, is to be read.
SourceLine sourceLine(const QString &line, LineExtent extent);

/// Whether `text` is what stands below the header of a table: "| --- | :-: |".
bool isDelimiterRow(const QString &text);

/// What ends the formula that `text` begins: "$$" or "\]".
QString formulaEnd(const QString &text);
