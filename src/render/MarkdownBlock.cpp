#include "MarkdownBlock.h"

#include "CharacterClass.h"

#include <optional>

namespace {
QStringView withoutBlanksAround(QStringView line)
{
    while (!line.isEmpty() && isBlank(line.front()))
        line = line.sliced(1);
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line;
}

// A combining mark makes another character of the prefix's last one, and then it is no prefix.
std::optional<QString> textAfter(QStringView prefix, QStringView line)
{
    if (!line.startsWith(prefix) || !isCharacterBoundary(line, prefix.size()))
        return std::nullopt;
    return line.sliced(prefix.size()).toString();
}

// The same for the dot: one that carries a mark, or belongs to the character before, is no dot.
qsizetype indexOfFirstDot(QStringView line)
{
    qsizetype dot = line.indexOf(u'.');
    while (dot >= 0 && !(isCharacterBoundary(line, dot) && isCharacterBoundary(line, dot + 1)))
        dot = line.indexOf(u'.', dot + 1);
    return dot;
}
} // namespace

QList<MarkdownBlock> parseBlocks(QStringView text)
{
    QList<MarkdownBlock> blocks;
    for (;;) {
        const qsizetype end = text.indexOf(u'\n');
        if (end < 0)
            break;
        QStringView line = text.first(end);
        if (line.endsWith(u'\r'))
            line.chop(1);
        blocks.append(classifyLine(line));
        text = text.sliced(end + 1);
    }
    blocks.append(classifyLine(text));
    return blocks;
}

MarkdownBlock classifyLine(QStringView line)
{
    using Kind = MarkdownBlock::Kind;

    const QStringView t = withoutBlanksAround(line);
    if (t.isEmpty())
        return {Kind::empty, {}};
    if (auto text = textAfter(u"### ", t))
        return {Kind::heading3, *text};
    if (auto text = textAfter(u"## ", t))
        return {Kind::heading2, *text};
    if (auto text = textAfter(u"# ", t))
        return {Kind::heading1, *text};
    if (auto text = textAfter(u"- ", t))
        return {Kind::bullet, *text};
    if (auto text = textAfter(u"* ", t); text && !t.startsWith(u"**"))
        return {Kind::bullet, *text};
    return {isNumberedItem(t) ? Kind::numbered : Kind::paragraph, t.toString()};
}

bool isNumberedItem(QStringView line)
{
    const qsizetype dot = indexOfFirstDot(line);
    if (dot <= 0)
        return false;
    for (qsizetype position = 0; position < dot;) {
        const CodePoint codePoint = codePointAt(line, position);
        if (isCharacterBoundary(line, position) && !isNumeric(codePoint.value))
            return false;
        position += codePoint.length;
    }
    return true;
}
