#include "CharacterClass.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>

namespace {
// The characters with a numeric value that are letters by category, in ascending order: the
// fields kPrimaryNumeric, kAccountingNumeric and kOtherNumeric of the Unicode Han database, which
// Qt does not have. Unicode 14.
constexpr std::array numericIdeographs{
    0x3405,  0x3483,  0x382a,  0x3b4d,  0x4e00,  0x4e03,  0x4e07,  0x4e09,  0x4e5d,
    0x4e8c,  0x4e94,  0x4e96,  0x4ebf,  0x4ec0,  0x4edf,  0x4ee8,  0x4f0d,  0x4f70,
    0x5104,  0x5146,  0x5169,  0x516b,  0x516d,  0x5341,  0x5343,  0x5344,  0x5345,
    0x534c,  0x53c1,  0x53c2,  0x53c3,  0x53c4,  0x56db,  0x58f1,  0x58f9,  0x5e7a,
    0x5efe,  0x5eff,  0x5f0c,  0x5f0d,  0x5f0e,  0x5f10,  0x62fe,  0x634c,  0x67d2,
    0x6f06,  0x7396,  0x767e,  0x8086,  0x842c,  0x8cae,  0x8cb3,  0x8d30,  0x9621,
    0x9646,  0x964c,  0x9678,  0x96f6,  0xf96b,  0xf973,  0xf978,  0xf9b2,  0xf9d1,
    0xf9d3,  0xf9fd,  0x20001, 0x20064, 0x200e2, 0x20121, 0x2092a, 0x20983, 0x2098c,
    0x2099c, 0x20aea, 0x20afd, 0x20b19, 0x22390, 0x22998, 0x23b1b, 0x2626d, 0x2f890};
} // namespace

CodePoint codePointAt(QStringView text, qsizetype position)
{
    const QChar first = text[position];
    if (first.isHighSurrogate() && position + 1 < text.size()
        && text[position + 1].isLowSurrogate())
        return {QChar::surrogateToUcs4(first, text[position + 1]), 2};
    return {first.unicode(), 1};
}

bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

bool isNumeric(char32_t codePoint)
{
    switch (QChar::category(codePoint)) {
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
        return true;
    case QChar::Letter_Other:
        return std::ranges::binary_search(numericIdeographs, int(codePoint));
    default:
        return false;
    }
}

bool isCharacterBoundary(QStringView text, qsizetype position)
{
    if (position <= 0 || position >= text.size())
        return true;
    constexpr char16_t firstCombiningMark = 0x300;
    if (text[position - 1].unicode() < firstCombiningMark
        && text[position].unicode() < firstCombiningMark)
        return text[position - 1] != u'\r' || text[position] != u'\n';

    constexpr qsizetype longestCodePoint = 2;
    const qsizetype start = std::max<qsizetype>(position - longestCodePoint, 0);
    const QStringView context
        = text.sliced(start).first(std::min(position + longestCodePoint, text.size()) - start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, context);
    finder.setPosition(position - start);
    return finder.isAtBoundary();
}
