#include "PlainSpanish.h"

#include "FoldedText.h"

#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

static constexpr qsizetype longestInline = 120;
static constexpr qsizetype shortestSignificant = 4;

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

QStringList significantWords(const QString &text)
{
    static const QSet<QString> common{
        u"algo"_s,       u"algun"_s,   u"alguna"_s,   u"antes"_s,    u"aquel"_s,     u"ayuda"_s,
        u"ayudame"_s,    u"bien"_s,    u"buenas"_s,   u"buenos"_s,   u"cada"_s,      u"como"_s,
        u"conceptos"_s,  u"contame"_s, u"cual"_s,     u"cuales"_s,   u"cuando"_s,    u"decime"_s,
        u"desde"_s,      u"despues"_s, u"dias"_s,     u"donde"_s,    u"durante"_s,   u"ellos"_s,
        u"entre"_s,      u"esas"_s,    u"esos"_s,     u"esta"_s,     u"estas"_s,     u"este"_s,
        u"esto"_s,       u"estos"_s,   u"estudiar"_s, u"explica"_s,  u"explicame"_s, u"favor"_s,
        u"forma"_s,      u"gracias"_s, u"hace"_s,     u"hacer"_s,    u"hasta"_s,     u"hola"_s,
        u"mejor"_s,      u"mismo"_s,   u"mucho"_s,    u"necesito"_s, u"nosotros"_s,  u"otra"_s,
        u"otro"_s,       u"para"_s,    u"pero"_s,     u"podes"_s,    u"podrias"_s,   u"porque"_s,
        u"pregunta"_s,   u"puede"_s,   u"pueden"_s,   u"quiero"_s,   u"saber"_s,     u"segun"_s,
        u"siempre"_s,    u"sobre"_s,   u"solo"_s,     u"tambien"_s,  u"tener"_s,     u"tengo"_s,
        u"tiene"_s,      u"tienen"_s,  u"todas"_s,    u"todo"_s,     u"todos"_s,     u"unas"_s,
        u"unos"_s,       u"usted"_s,   u"vamos"_s,    u"quien"_s,    u"cuanto"_s,    u"relacion"_s,
        u"relacionan"_s, u"existe"_s,  u"funciona"_s, u"significa"_s};
    static const QRegularExpression notInAWord(u"[^\\p{L}\\p{N}-]+"_s);

    QStringList words;
    QSet<QString> seen = common;
    for (const QString &word : text.split(notInAWord, Qt::SkipEmptyParts)) {
        const QString folded = foldedText(word);
        if (folded.size() < shortestSignificant || seen.contains(folded))
            continue;
        seen.insert(folded);
        words += word;
    }
    return words;
}
