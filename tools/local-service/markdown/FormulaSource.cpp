#include "FormulaSource.h"

#include "ReadableFormula.h"

#include <QRegularExpression>

#include <array>
#include <optional>

using namespace Qt::StringLiterals;

// In characters: what is further apart is no pair.
static constexpr qsizetype longestFormula = 4000;

// Whatever a formula becomes, it is text.
static QString escaped(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        const bool isMark = c.unicode() < 0x80 && !c.isLetterOrNumber() && !c.isSpace();
        if (isMark)
            result += u'\\';
        result += c;
    }
    return result;
}

// Between single dollars stands a formula when it looks like one; two prices do not.
static bool looksLikeFormula(QStringView content)
{
    static const QRegularExpression sign(u"[\\\\^_={}+<>/|]|^\\d{0,3}[A-Za-z]{1,3}$"_s);
    return !content.isEmpty() && !content.front().isSpace() && !content.back().isSpace()
        && !content.contains("\n\n"_L1) && sign.match(content.toString()).hasMatch();
}

struct Delimiters
{
    QLatin1StringView begin;
    QLatin1StringView end;
};

static constexpr std::array delimiters{
    Delimiters{"$$"_L1, "$$"_L1},
    Delimiters{R"(\[)"_L1, R"(\])"_L1},
    Delimiters{R"(\()"_L1, R"(\))"_L1},
    Delimiters{"$"_L1, "$"_L1},
};

struct Found
{
    QStringView content;
    /// Where the text goes on.
    qsizetype end;
};

static std::optional<Found> formulaAt(QStringView text, qsizetype at)
{
    for (const auto &[begin, end] : delimiters) {
        if (!text.sliced(at).startsWith(begin))
            continue;
        const qsizetype first = at + begin.size();
        const qsizetype last = text.sliced(first).left(longestFormula).indexOf(end);
        if (last < 0)
            return std::nullopt;
        const Found found{text.sliced(first, last), first + last + end.size()};
        if (begin.size() > 1)
            return found;
        const bool isFollowedByDigit = found.end < text.size() && text[found.end].isDigit();
        return looksLikeFormula(found.content) && !isFollowedByDigit ? std::optional(found)
                                                                     : std::nullopt;
    }
    return std::nullopt;
}

// The length of the code span at `at`, which begins with a backtick; of the backticks alone when
// nothing ends it.
static qsizetype codeLength(QStringView text, qsizetype at)
{
    qsizetype marks = 0;
    while (at + marks < text.size() && text[at + marks] == u'`')
        ++marks;
    const qsizetype end = text.sliced(at + marks).indexOf(QString(marks, u'`'));
    return end < 0 ? marks : marks + end + marks;
}

QString withReadableFormulas(const QString &markdown)
{
    const QStringView text(markdown);
    QString result;
    qsizetype at = 0;
    while (at < text.size()) {
        const QChar c = text[at];
        if (c == u'`') {
            const qsizetype length = codeLength(text, at);
            result += text.sliced(at, length);
            at += length;
            continue;
        }
        const auto found = c == u'$' || c == u'\\' ? formulaAt(text, at) : std::nullopt;
        if (found) {
            result += escaped(readableFormula(found->content.toString()));
            at = found->end;
            continue;
        }
        // An escaped character begins nothing.
        const qsizetype length = c == u'\\' && at + 1 < text.size() ? 2 : 1;
        result += text.sliced(at, length);
        at += length;
    }
    return result;
}
