#include "MarkdownReducer.h"

#include "MarkdownLines.h"

#include <QRegularExpression>

#include <utility>

using namespace Qt::StringLiterals;

// In characters: a formula that never ends is text after so many.
static constexpr qsizetype longestFormula = 4000;

static QStringList plainLine(const QString &line)
{
    const QString trimmed = line.trimmed();
    return trimmed.isEmpty() ? QStringList() : QStringList{line};
}

QStringList MarkdownReducer::feed(const QString &text)
{
    QStringList lines;
    qsizetype begin = 0;
    for (;;) {
        const qsizetype end = text.indexOf(u'\n', begin);
        m_partial += QStringView(text).sliced(begin, (end < 0 ? text.size() : end) - begin);
        if (end < 0)
            break;
        begin = end + 1;
        if (m_partial.endsWith(u'\r'))
            m_partial.chop(1);
        lines += takeLine(std::exchange(m_partial, {}));
    }
    // A few characters of the next line are enough to know that the one before is whole.
    constexpr qsizetype mostLookedAt = 200;
    const bool canClose
        = m_block == Block::Paragraph || m_block == Block::Item || m_block == Block::Table;
    if (canClose && m_partial.size() < mostLookedAt
        && isClosedBy(sourceLine(m_partial, LineExtent::Beginning)))
        lines += close();
    return lines;
}

QStringList MarkdownReducer::finish()
{
    QStringList lines;
    if (!m_partial.isEmpty())
        lines += takeLine(std::exchange(m_partial, {}));
    return lines + close();
}

bool MarkdownReducer::isClosedBy(const SourceLine &line) const
{
    switch (line.kind) {
    case LineKind::Blank:
    case LineKind::Heading:
    case LineKind::Fence:
    case LineKind::Formula:
    case LineKind::Item:
        return true;
    case LineKind::Unknown:
        return false;
    default:
        // A line without the mark of a quote continues the paragraph in it; one with it is another.
        return line.quoteDepth > m_quoteDepth;
    }
}

QStringList MarkdownReducer::takeLine(const QString &line)
{
    if (m_block == Block::Code)
        return takeCodeLine(line);
    if (m_block == Block::Formula) {
        m_lines += line;
        const bool isWhole = line.contains(formulaEnd(m_lines.first()))
            || m_lines.join(u'\n').size() > longestFormula;
        return isWhole ? close() : QStringList();
    }

    const SourceLine source = sourceLine(line, LineExtent::Whole);
    QStringList lines;
    if (isClosedBy(source))
        lines = close();
    m_quoteDepth = source.quoteDepth;

    switch (source.kind) {
    case LineKind::Heading:
        return lines + markdownLines(source.text);
    case LineKind::Fence:
        m_fence = source.text.first(source.text.startsWith(u'`') ? source.text.lastIndexOf(u'`') + 1
                                                                 : 3);
        m_block = Block::Code;
        return lines;
    case LineKind::Formula:
        return lines + begin(Block::Formula, source.text);
    case LineKind::Item:
        return lines + begin(Block::Item, source.text);
    case LineKind::Rule:
    case LineKind::Underline:
        if (m_block == Block::Paragraph && !source.text.startsWith(u'*')
            && !source.text.startsWith(u'_')) {
            m_lines += source.text;
            return lines + close();
        }
        return lines + close()
            + (source.kind == LineKind::Underline ? plainLine(source.text) : QStringList());
    case LineKind::Text:
        return lines + takeText(source.text);
    default:
        return lines;
    }
}

QStringList MarkdownReducer::takeCodeLine(const QString &line)
{
    const QString trimmed = line.trimmed();
    const bool isEnd
        = trimmed.startsWith(m_fence) && trimmed.count(m_fence.front()) == trimmed.size();
    if (isEnd) {
        m_block = Block::None;
        return {};
    }
    return plainLine(literalLine(line));
}

QStringList MarkdownReducer::takeText(const QString &line)
{
    if (m_block == Block::Table) {
        if (line.contains(u'|'))
            return markdownLines(m_lines.join(u'\n') + u'\n' + line);
        return close() + begin(Block::Paragraph, line);
    }
    if (m_block == Block::Paragraph && m_lines.size() == 1 && m_lines.first().contains(u'|')
        && isDelimiterRow(line)) {
        // The parser wants three of what one is enough for.
        static const QRegularExpression dashes(u"-+"_s);
        m_lines += QString(line).replace(dashes, u"---"_s);
        m_block = Block::Table;
        return {};
    }
    if (m_block == Block::None)
        return begin(Block::Paragraph, line);
    m_lines += line;
    return {};
}

QStringList MarkdownReducer::begin(Block block, const QString &line)
{
    m_block = block;
    m_lines = {line};
    return {};
}

QStringList MarkdownReducer::close()
{
    const Block block = std::exchange(m_block, Block::None);
    const QStringList lines = std::exchange(m_lines, {});
    // The rows of a table have left one by one; of one without any, its header is left.
    if (block == Block::Code || block == Block::None || block == Block::Table)
        return {};
    return markdownLines(lines.join(u'\n'));
}
