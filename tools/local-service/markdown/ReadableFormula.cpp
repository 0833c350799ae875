#include "ReadableFormula.h"

#include "FormulaSymbols.h"
#include "SymbolScripts.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

enum class Surroundings {
    /// Between the marks of a formula.
    Formula,
    /// In ordinary text, where a brace is a brace.
    Text,
};

/// Reads LaTeX from its beginning to its end, once.
class FormulaReader
{
public:
    FormulaReader(QStringView source, Surroundings surroundings, int depth)
        : m_source(source)
        , m_surroundings(surroundings)
        , m_depth(depth)
        , m_lastBrace(source.lastIndexOf(u'}'))
    { }

    QString read();

private:
    QString readNext();
    QString readCommand();
    QString readScript();
    QString readSymbol(const QString &name);
    QString readFraction();
    QString readRoot();
    QString argument();
    std::optional<QStringView> group(QChar begin, QChar end);
    QString nested(QStringView source, Surroundings surroundings = Surroundings::Formula) const;
    QStringView letters();
    bool isFormula() const { return m_surroundings == Surroundings::Formula; }
    QChar current() const { return m_at < m_source.size() ? m_source[m_at] : QChar(); }

    QStringView m_source;
    Surroundings m_surroundings;
    int m_depth;
    /// Past it no group ends.
    qsizetype m_lastBrace;
    qsizetype m_at = 0;
};

// Past it a formula is left as it is: no person would write one.
constexpr int deepestNesting = 12;

// Whether a fraction's part needs parentheses on one line.
bool isComposite(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.isSpace() || QStringView(u"+-−·×/").contains(c); });
}

QString operand(const QString &text)
{
    const QString trimmed = text.trimmed();
    return isComposite(trimmed) ? u'(' + trimmed + u')' : trimmed;
}

QString FormulaReader::read()
{
    QString result;
    while (m_at < m_source.size())
        result += readNext();
    return result;
}

QString FormulaReader::nested(QStringView source, Surroundings surroundings) const
{
    if (m_depth >= deepestNesting)
        return source.toString();
    return FormulaReader(source, surroundings, m_depth + 1).read();
}

QString FormulaReader::readNext()
{
    const QChar c = current();
    if (c == u'\\')
        return readCommand();
    if (c == u'^' || c == u'_')
        return readScript();
    if (isFormula()) {
        if (c == u'{') {
            if (const auto content = group(u'{', u'}'))
                return nested(*content);
        }
        if (c == u'~' || c == u'&') {
            ++m_at;
            return u" "_s;
        }
        if (c == u'{' || c == u'}' || c == u'$') {
            ++m_at;
            return {};
        }
    }
    ++m_at;
    return c;
}

// The letters from here on, passed over.
QStringView FormulaReader::letters()
{
    const auto isLetter
        = [](QChar c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); };
    const QStringView rest = m_source.sliced(m_at);
    const qsizetype length = std::find_if_not(rest.begin(), rest.end(), isLetter) - rest.begin();
    m_at += length;
    return rest.first(length);
}

QString FormulaReader::readCommand()
{
    const qsizetype begin = m_at;
    ++m_at;
    const QString name = letters().toString();
    if (name.isEmpty()) {
        const QChar c = current();
        if (!isFormula())
            return u"\\"_s;
        ++m_at;
        // Spaces of several widths, line ends, and characters that stand for themselves.
        return QStringView(u",;:! \\").contains(c) ? u" "_s : c.isNull() ? QString() : QString(c);
    }
    switch (formulaCommand(name)) {
    case FormulaCommand::Fraction:
        return readFraction();
    case FormulaCommand::Root:
        return readRoot();
    case FormulaCommand::Content:
        return current() == u'{' || isFormula() ? argument()
                                                : m_source.sliced(begin, m_at - begin).toString();
    case FormulaCommand::Chemistry:
        if (const auto content = group(u'{', u'}'))
            return readableChemistry(nested(*content, Surroundings::Text));
        return {};
    case FormulaCommand::Environment:
        group(u'{', u'}');
        return u" "_s;
    case FormulaCommand::Nothing:
        // "\left." is a delimiter that is not there.
        if ((name == "left"_L1 || name == "right"_L1) && current() == u'.')
            ++m_at;
        return {};
    case FormulaCommand::Symbol:
        return readSymbol(name);
    case FormulaCommand::Unknown:
        break;
    }
    return isFormula() ? name : m_source.sliced(begin, m_at - begin).toString();
}

QString FormulaReader::readSymbol(const QString &name)
{
    QString symbol = formulaSymbol(name);
    // The blank that ends the name of a letter is none between it and the next: "\Delta G".
    const bool isLetter = symbol.size() == 1 && symbol.front().isLetter();
    if (isFormula() && isLetter) {
        const QStringView rest = m_source.sliced(m_at).trimmed();
        if (!rest.isEmpty() && rest.front().isLetterOrNumber())
            m_at = rest.begin() - m_source.begin();
    }
    return symbol;
}

QString FormulaReader::readFraction()
{
    const QString above = operand(argument());
    return above + u'/' + operand(argument());
}

QString FormulaReader::readRoot()
{
    const auto degree = current() == u'[' ? group(u'[', u']') : std::nullopt;
    const QString prefix
        = degree ? inScript(*degree, Script::Above).value_or(QString()) : QString();
    return prefix + u'√' + operand(argument());
}

// What a command takes: a group, a command, or one character.
QString FormulaReader::argument()
{
    while (isFormula() && current().isSpace())
        ++m_at;
    if (const auto content = group(u'{', u'}'))
        return nested(*content);
    if (current() == u'{')
        ++m_at;
    if (m_at >= m_source.size())
        return {};
    if (current() == u'\\' && m_depth < deepestNesting) {
        ++m_depth;
        QString result = readCommand();
        --m_depth;
        return result;
    }
    return m_source[m_at++];
}

// What stands between `begin`, which has to be next, and the `end` that belongs to it.
std::optional<QStringView> FormulaReader::group(QChar begin, QChar end)
{
    if (current() != begin || (end == u'}' && m_at > m_lastBrace))
        return std::nullopt;
    // In characters: no person writes a longer one, and an end that never comes is not looked for
    // again and again.
    constexpr qsizetype longestGroup = 1000;
    int depth = 0;
    for (qsizetype i = m_at; i < std::min(m_source.size(), m_at + longestGroup); ++i) {
        const QChar c = m_source[i];
        if (c == u'\\') {
            ++i;
        } else if (c == begin) {
            ++depth;
        } else if (c == end && --depth == 0) {
            const QStringView content = m_source.sliced(m_at + 1, i - m_at - 1);
            m_at = i + 1;
            return content;
        }
    }
    return std::nullopt;
}

QString FormulaReader::readScript()
{
    const qsizetype begin = m_at;
    const Script script = current() == u'_' ? Script::Below : Script::Above;
    ++m_at;
    if (isFormula())
        return scriptText(argument().trimmed(), script);

    // In text it has to follow a letter, a digit or a bracket, and be digits, a charge or a group
    // that small letters exist for.
    const auto leave = [&] {
        m_at = begin + 1;
        return QString(m_source[begin]);
    };
    const QChar before = begin > 0 ? m_source[begin - 1] : QChar();
    if (!before.isLetterOrNumber() && before != u')' && before != u']')
        return leave();
    if (const auto content = group(u'{', u'}')) {
        const QString text = nested(*content);
        return inScript(text, script).value_or(m_source[begin] + text);
    }
    static const QRegularExpression counts(u"^\\d{1,2}(?!\\d)"_s);
    static const QRegularExpression powersAndCharges(
        u"^(?:[-−]\\d+|\\d*[-−+](?![\\p{L}\\p{N}])|\\d+)"_s);
    // No longer count is ever written so.
    constexpr qsizetype longestCount = 12;
    const QString rest = m_source.sliced(m_at).left(longestCount).toString();
    const auto match = (script == Script::Below ? counts : powersAndCharges).match(rest);
    const auto small = match.hasMatch() ? inScript(match.capturedView(), script) : std::nullopt;
    if (!small)
        return leave();
    m_at += match.capturedLength();
    return *small;
}

} // namespace

QString readableFormula(const QString &latex)
{
    return FormulaReader(latex, Surroundings::Formula, 0).read().simplified();
}

QString withReadableSymbols(const QString &text)
{
    const bool hasSigns = std::any_of(text.begin(), text.end(),
                                      [](QChar c) { return c == u'\\' || c == u'^' || c == u'_'; });
    return hasSigns ? FormulaReader(text, Surroundings::Text, 0).read() : text;
}
