#pragma once

#include "SourceLine.h"

#include <QString>
#include <QStringList>

/// Turns the Markdown that a model writes into the few marks that the program shows, as it
/// arrives, cut anywhere: headings of three levels, "- " bullets, numbered items, paragraphs and
/// "**" around what is bold. Each paragraph, item, heading, row of a table and line of code is one
/// line, given as soon as what follows shows that it is whole.
class MarkdownReducer
{
public:
    /// The lines that `text` completes, without line ends; none is empty.
    QStringList feed(const QString &text);

    /// The last lines, once there is no more text.
    QStringList finish();

private:
    enum class Block {
        None,
        Paragraph,
        Item,
        /// Whose first two lines are the header and the line below it.
        Table,
        Code,
        /// A formula on lines of its own.
        Formula,
    };

    QStringList takeLine(const QString &line);
    QStringList takeCodeLine(const QString &line);
    QStringList takeText(const QString &line);
    QStringList begin(Block block, const QString &line);
    QStringList close();
    bool isClosedBy(const SourceLine &line) const;

    Block m_block = Block::None;
    QStringList m_lines;
    int m_quoteDepth = 0;
    QString m_fence;
    QString m_partial;
};
