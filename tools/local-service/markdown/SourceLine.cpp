#include "SourceLine.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

static qsizetype runLength(QStringView text, QChar c)
{
    return std::find_if(text.begin(), text.end(), [c](QChar other) { return other != c; })
        - text.begin();
}

static bool isOnly(QStringView text, QChar c)
{
    return std::all_of(text.begin(), text.end(),
                       [c](QChar other) { return other == c || other.isSpace(); });
}

// "1. " or "12) ": as many digits as lists of a reply have, so that a year at the beginning of a
// line is no item.
static LineKind numberedKind(QStringView text, LineExtent extent)
{
    constexpr qsizetype mostDigits = 3;
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const qsizetype digits = std::find_if_not(text.begin(), text.end(), isDigit) - text.begin();
    if (digits == 0 || digits > mostDigits)
        return LineKind::Text;
    const QStringView rest = text.sliced(digits);
    if (rest.isEmpty())
        return extent == LineExtent::Beginning ? LineKind::Unknown : LineKind::Text;
    if (rest.front() != u'.' && rest.front() != u')')
        return LineKind::Text;
    if (rest.size() == 1)
        return extent == LineExtent::Beginning ? LineKind::Unknown : LineKind::Text;
    return rest[1].isSpace() ? LineKind::Item : LineKind::Text;
}

static LineKind markedKind(QStringView text, LineExtent extent)
{
    constexpr qsizetype deepestHeading = 6;
    constexpr qsizetype shortestRule = 3;
    constexpr qsizetype shortestFence = 3;
    const bool isPartial = extent == LineExtent::Beginning;
    const QChar first = text.front();
    const qsizetype run = runLength(text, first);
    const QStringView rest = text.sliced(run);

    switch (first.unicode()) {
    case u'#':
        if (run > deepestHeading)
            return LineKind::Text;
        if (rest.isEmpty())
            return isPartial ? LineKind::Unknown : LineKind::Heading;
        return rest.front().isSpace() ? LineKind::Heading : LineKind::Text;
    case u'`':
        // A backtick further on makes it code inside of a line.
        if (isPartial)
            return LineKind::Unknown;
        return run >= shortestFence && !rest.contains(u'`') ? LineKind::Fence : LineKind::Text;
    case u'~':
        if (rest.isEmpty() && isPartial)
            return LineKind::Unknown;
        return run >= shortestFence ? LineKind::Fence : LineKind::Text;
    case u'=':
        if (rest.trimmed().isEmpty())
            return isPartial ? LineKind::Unknown : LineKind::Underline;
        return LineKind::Text;
    case u'-':
    case u'*':
    case u'_':
    case u'+':
        if (isOnly(text, first) && first != u'+') {
            if (isPartial)
                return LineKind::Unknown;
            if (text.count(first) >= shortestRule)
                return LineKind::Rule;
        }
        if (first == u'_' || run > 1)
            return LineKind::Text;
        if (rest.isEmpty())
            return isPartial ? LineKind::Unknown : LineKind::Text;
        return rest.front().isSpace() ? LineKind::Item : LineKind::Text;
    default:
        return numberedKind(text, extent);
    }
}

QString formulaEnd(const QString &text)
{
    return text.startsWith(R"(\[)"_L1) ? u"\\]"_s : u"$$"_s;
}

static LineKind formulaKind(const QString &text, LineExtent extent)
{
    if (extent == LineExtent::Beginning)
        return LineKind::Unknown;
    const bool begins = text.startsWith(R"(\[)"_L1) || text.startsWith("$$"_L1);
    return begins && text.indexOf(formulaEnd(text), 2) < 0 ? LineKind::Formula : LineKind::Text;
}

SourceLine sourceLine(const QString &line, LineExtent extent)
{
    SourceLine result;
    QStringView text = QStringView(line).trimmed();
    while (text.startsWith(u'>')) {
        ++result.quoteDepth;
        text = text.sliced(1).trimmed();
    }
    // The end of a line may be two blanks, which break it.
    result.text = line.sliced(text.isEmpty() ? line.size() : text.begin() - line.constData());

    if (text.isEmpty())
        result.kind = extent == LineExtent::Whole ? LineKind::Blank : LineKind::Unknown;
    else if (text.front() == u'$' || text.front() == u'\\')
        result.kind = formulaKind(result.text.trimmed(), extent);
    else
        result.kind = markedKind(result.text, extent);
    return result;
}

bool isDelimiterRow(const QString &text)
{
    static const QRegularExpression delimiterRow(
        u"^\\|?\\s*:?-+:?\\s*(\\|\\s*:?-+:?\\s*)*\\|?\\s*$"_s);
    return text.contains(u'|') && delimiterRow.match(text).hasMatch();
}
