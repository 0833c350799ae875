#include "StyledLine.h"

#include "MarkdownLines.h"
#include "ReadableFormula.h"

using namespace Qt::StringLiterals;

static constexpr auto boldMark = "**"_L1;
// Looks the same and means nothing.
static constexpr QChar asteriskOperator = u'\u2217';

static bool isBold(TextStyle style)
{
    return style == TextStyle::Bold || style == TextStyle::BoldCode;
}

static bool isCode(TextStyle style)
{
    return style == TextStyle::Code || style == TextStyle::BoldCode;
}

QString literalLine(const QString &text)
{
    QString line = text;
    return line.replace(boldMark, QString(2, asteriskOperator));
}

void StyledLine::append(const QString &text, TextStyle style)
{
    if (!m_runs.isEmpty() && m_runs.last().style == style)
        m_runs.last().text += text;
    else if (!text.isEmpty())
        m_runs += Run{text, style};
}

QString StyledLine::text() const
{
    QString line;
    bool bold = false;
    for (const Run &run : m_runs) {
        QString text = literalLine(isCode(run.style) ? run.text : withReadableSymbols(run.text));
        const bool changes = isBold(run.style) != bold;
        // A blank is neither: marks around one would be nothing but noise.
        if (changes && !text.trimmed().isEmpty()) {
            bold = !bold;
            line += boldMark;
        }
        // An asterisk beside a mark would be taken for a part of it.
        if (text.startsWith(u'*') && line.endsWith(u'*'))
            text.front() = asteriskOperator;
        if (text.endsWith(u'*'))
            text.back() = asteriskOperator;
        line += text;
    }
    if (bold)
        line += boldMark;
    return line.simplified();
}
