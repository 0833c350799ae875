#include "NoteForm.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

static constexpr auto counterName = "n"_L1;

static QStringList lineNames(const QString &line)
{
    static const QRegularExpression name(u"\\{([^{}]+)\\}"_s);
    QStringList names;
    for (const auto &match : name.globalMatch(line)) {
        if (match.captured(1) != counterName)
            names += match.captured(1);
    }
    return names;
}

// The text of `line` for repetition `index`, counted from 0.
static QString filledLine(QStringView line, const NoteValues &values, qsizetype index)
{
    QString filled;
    while (!line.isEmpty()) {
        const qsizetype open = line.indexOf(u'{');
        const qsizetype close = line.indexOf(u'}', open);
        if (open < 0 || close < 0)
            break;
        filled += line.first(open);
        const QString name = line.sliced(open + 1, close - open - 1).toString();
        const QStringList texts = values.value(name);
        if (name == counterName)
            filled += QString::number(index + 1);
        else if (!texts.isEmpty())
            filled += texts.size() == 1 ? texts.first() : texts.value(index);
        line = line.sliced(close + 1);
    }
    filled += line;
    return filled;
}

// How deep a heading is; 0 for any other line.
static qsizetype headingLevel(const QString &line)
{
    qsizetype level = 0;
    while (level < line.size() && line[level] == u'#')
        ++level;
    return line.mid(level, 1) == u' ' ? level : 0;
}

// Leaves out the headings under the title that nothing stands under.
static void removeBareHeadings(QStringList &lines)
{
    for (qsizetype i = lines.size() - 1; i >= 0; --i) {
        const qsizetype level = headingLevel(lines[i]);
        const qsizetype next = i + 1 < lines.size() ? headingLevel(lines[i + 1]) : 1;
        if (level > 1 && next > 0 && next <= level)
            lines.removeAt(i);
    }
}

QStringList fillForm(const QStringList &form, const NoteValues &values)
{
    QStringList lines;
    bool isIntroduction = false;
    for (const QString &line : form) {
        qsizetype repetitions = 1;
        bool isComplete = true;
        for (const QString &name : lineNames(line)) {
            const qsizetype count = values.value(name).size();
            isComplete = isComplete && count > 0;
            repetitions = std::max(repetitions, count);
        }
        // A line that introduces the next one says nothing without it.
        if (isIntroduction && !isComplete)
            lines.removeLast();
        for (qsizetype i = 0; isComplete && i < repetitions; ++i)
            lines += filledLine(line, values, i);
        isIntroduction = isComplete && line.endsWith(u':') && lineNames(line).isEmpty();
    }
    removeBareHeadings(lines);
    return lines;
}

QStringList formNames(const QStringList &form)
{
    QStringList names;
    for (const QString &line : form)
        names += lineNames(line);
    names.removeDuplicates();
    return names;
}
