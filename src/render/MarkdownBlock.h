// How messages look: the reply's small Markdown subset and the bubble around it.
#pragma once

#include <QList>
#include <QString>
#include <QStringView>

/// One line of a reply: what kind of row it makes and the text that row shows, without the line's
/// prefix. A numbered item keeps its number.
struct MarkdownBlock
{
    enum class Kind { heading1, heading2, heading3, bullet, numbered, paragraph, empty };

    Kind kind = Kind::empty;
    QString text;

    bool operator==(const MarkdownBlock &) const = default;
};

/// One block per line of `text`, in order. Lines end at "\n" and "\r\n"; a lone "\r" is text like
/// any other. An empty text is one empty line.
QList<MarkdownBlock> parseBlocks(QStringView text);

/// The block of one line. Blanks around the line do not count; blanks after a prefix stay.
MarkdownBlock classifyLine(QStringView line);

/// Whether the part of `line` before its first "." is not empty and all numeric, in any script.
bool isNumberedItem(QStringView line);
