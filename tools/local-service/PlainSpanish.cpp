#include "PlainSpanish.h"

#include "FoldedText.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

static constexpr qsizetype longestInline = 120;

QString inlineText(const QString &text)
{
    // A bounded start is enough to fill the line, however long the text is.
    QString line = text.left(8 * longestInline).simplified();
    line.removeIf([](QChar c) {
        return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format;
    });
    while (line.contains("**"_L1))
        line.remove("**"_L1);
    if (line.size() > longestInline) {
        const bool splitsPair = line[longestInline - 1].isHighSurrogate();
        line = line.first(longestInline - (splitsPair ? 1 : 0)).trimmed() + u'…';
    }
    return line;
}

QString topicText(const QString &text)
{
    static const QRegularExpression start(u"^[\\s¿¡#*.,;:-]+"_s);
    static const QRegularExpression end(u"[\\s?!.,;:]+$"_s);
    return inlineText(text).remove(start).remove(end);
}

static bool startsWithSoundOfI(const QString &text)
{
    const QString folded = foldedText(text);
    const bool isDiphthong = folded.startsWith("hie"_L1) || folded.startsWith("hia"_L1)
        || folded.startsWith("io"_L1) || folded.startsWith("hio"_L1);
    return !isDiphthong && (folded.startsWith(u'i') || folded.startsWith("hi"_L1));
}

QString capitalized(const QString &text)
{
    return text.left(1).toUpper() + text.mid(1);
}

QString spanishList(const QStringList &parts)
{
    if (parts.size() < 2)
        return parts.value(0);
    const QString conjunction = startsWithSoundOfI(parts.last()) ? u" e "_s : u" y "_s;
    return parts.first(parts.size() - 1).join(u", "_s) + conjunction + parts.last();
}
