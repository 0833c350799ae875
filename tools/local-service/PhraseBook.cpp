#include "PhraseBook.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

static QString withoutAccents(const QString &phrase)
{
    QString plain = phrase.normalized(QString::NormalizationForm_KD).toLower();
    return plain.removeIf([](QChar c) { return c.isMark(); });
}

// The expression for one word of a phrase; words stand in the text with a blank after each.
static QString tokenExpression(QString token)
{
    if (token == "^"_L1)
        return u"^"_s;
    if (token == "$"_L1)
        return u"$"_s;
    if (token == "..."_L1)
        return u"(?:\\S+ ){0,5}"_s;
    if (token == "*"_L1)
        return u"\\S+ "_s;
    const bool isOptional = token.endsWith(u'?');
    if (isOptional)
        token.chop(1);
    const bool mayEnd = token.contains("|$)"_L1);
    token.remove("|$"_L1);
    token.replace("*"_L1, "\\S*"_L1);
    // A word that may be missing inside an alternative takes its blank along.
    static const QRegularExpression mayMiss(u"\\(([^()]*)\\)\\? "_s);
    token.replace(mayMiss, u"(?:(?:\\1) )?"_s);
    QString word = "(?:"_L1 + token + ")"_L1 + u' ';
    if (mayEnd)
        word = "(?:"_L1 + word + "|$)"_L1;
    return isOptional ? "(?:"_L1 + word + ")?"_L1 : word;
}

// Blanks inside parentheses separate the words of one alternative, not of the phrase.
static QStringList tokens(const QString &phrase)
{
    QStringList found{QString()};
    int depth = 0;
    for (const QChar c : phrase) {
        depth += c == u'(' ? 1 : c == u')' ? -1 : 0;
        if (c == u' ' && depth == 0)
            found += QString();
        else
            found.last() += c;
    }
    found.removeAll(QString());
    return found;
}

static QString phraseExpression(QString phrase, const NoteValues &lists)
{
    for (auto list = lists.begin(); list != lists.end(); ++list)
        phrase.replace(u'{' + list.key() + u'}', u'(' + list.value().join(u'|') + u')');
    phrase = withoutAccents(phrase);
    if (phrase.contains(u'{'))
        qFatal("A phrase names a list that is not there: %s", qUtf8Printable(phrase));
    QString expression;
    for (const QString &token : tokens(phrase))
        expression += tokenExpression(token);
    return expression;
}

PhraseBook::PhraseBook(const QList<NoteSection> &sections, const QString &key)
{
    NoteValues lists;
    for (const NoteSection &section : sections) {
        if (section.title == "listas"_L1)
            lists = section.values;
    }
    for (const NoteSection &section : sections) {
        QStringList expressions;
        for (const QString &phrase : section.values.value(key))
            expressions += phraseExpression(phrase, lists);
        if (expressions.isEmpty())
            continue;
        const QRegularExpression any("(?<!\\S)(?:"_L1 + expressions.join(u'|') + ")"_L1);
        if (!any.isValid())
            qFatal("Not a phrase, in %s: %s", qUtf8Printable(section.title),
                   qUtf8Printable(any.errorString()));
        m_phrases += Phrases{section.title, any};
        addWords(any.pattern());
    }
    QStringList sorted = m_words.values();
    sorted.sort();
    for (const QString &word : std::as_const(sorted)) {
        if (const HeardWord heard(word); !heard.sound.isEmpty())
            m_wordsBySound[heard.sound.front()] += heard;
    }
}

QStringList PhraseBook::corrected(QStringList words,
                                  const std::function<bool(const QString &)> &isWord) const
{
    for (QString &word : words) {
        if (isPhraseWord(word) || isWord(word))
            continue;
        // Words of another first sound are no slips of each other.
        const HeardWord said(word);
        const auto candidates
            = m_wordsBySound.constFind(said.sound.isEmpty() ? QChar() : said.sound.front());
        if (candidates == m_wordsBySound.constEnd())
            continue;
        const auto meant
            = std::find_if(candidates->begin(), candidates->end(),
                           [&](const HeardWord &candidate) { return isSlipOf(said, candidate); });
        if (meant != candidates->end())
            word = meant->word;
    }
    return words;
}

void PhraseBook::addWords(const QString &expression)
{
    static const QRegularExpression word(u"(\\w+)(\\\\S\\*)?"_s);
    for (const auto &match : word.globalMatch(expression)) {
        if (match.capturedLength(2) == 0)
            m_words += match.captured(1);
        else
            m_beginnings += match.captured(1);
    }
}

bool PhraseBook::isPhraseWord(const QString &word) const
{
    return m_words.contains(word)
        || std::any_of(m_beginnings.begin(), m_beginnings.end(),
                       [&](const QString &beginning) { return word.startsWith(beginning); });
}

static std::optional<PhraseMatch> matchOf(const QString &section, const QRegularExpression &any,
                                          const QStringList &words)
{
    const QString spoken = words.join(u' ') + u' ';
    const auto match = any.match(spoken);
    if (!match.hasMatch())
        return std::nullopt;
    const QStringView before = QStringView(spoken).first(match.capturedStart());
    return PhraseMatch{section, before.count(u' '), match.capturedView().count(u' ')};
}

QList<PhraseMatch> PhraseBook::matches(const QStringList &words) const
{
    QList<PhraseMatch> found;
    for (const auto &[section, any] : m_phrases) {
        if (auto match = matchOf(section, any, words))
            found += *match;
    }
    return found;
}

std::optional<PhraseMatch> PhraseBook::match(const QString &section, const QStringList &words) const
{
    for (const auto &[title, any] : m_phrases) {
        if (title == section)
            return matchOf(title, any, words);
    }
    return std::nullopt;
}

bool PhraseBook::holds(const QString &section, const QStringList &words) const
{
    return match(section, words).has_value();
}
