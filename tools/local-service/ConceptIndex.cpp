#include "ConceptIndex.h"

#include "SpanishWords.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

// A name may stand with this many other words between its own: "músculo estriado cardíaco".
static constexpr qsizetype mostBetween = 1;
static constexpr qsizetype shortestShared = 5;
// As short as "Down", a name could be a word of another language.
static constexpr qsizetype longestAmbiguous = 4;
static constexpr int tooManyFaults = 3;

ConceptIndex::ConceptIndex(const QList<StudyConcept> &concepts,
                           const QList<NoteSection> &abbreviations)
    : m_conceptCount(concepts.size())
{
    for (const NoteSection &section : abbreviations) {
        for (auto form = section.values.begin(); form != section.values.end(); ++form)
            m_shortForms.insert(form.key(), foldedWords(textWords(form.value().first())));
    }
    for (const StudyConcept &known : concepts) {
        for (const QString &name : known.names)
            addName(name, &known);
        for (const QString &name : known.otherThings)
            addName(name, nullptr);
        addLines(known);
    }
}

void ConceptIndex::addName(const QString &text, const StudyConcept *known)
{
    Name name{text, known, {}, 0, known && known->commonNames.contains(text)};
    for (const QString &word : foldedWords(words(text))) {
        if (isCommonWord(word))
            continue;
        name.terms += termOf(word);
        name.length += word.size();
    }
    if (!name.terms.isEmpty())
        m_names += name;
}

void ConceptIndex::addLines(const StudyConcept &known)
{
    QSet<QString> all;
    const auto add = [&](const QString &key, qsizetype index, const QString &text) {
        const QStringList stems = topicStems(foldedWords(textWords(text)));
        const QSet<QString> set{stems.begin(), stems.end()};
        all += set;
        m_lines += Line{{&known, key, index}, set};
    };
    for (auto value = known.values.begin(); value != known.values.end(); ++value) {
        // A question and its answer are one.
        if (value.key() == "respuesta"_L1)
            continue;
        const QStringList answers
            = value.key() == "pregunta"_L1 ? known.values.value(u"respuesta"_s) : QStringList();
        for (qsizetype i = 0; i < value.value().size(); ++i)
            add(value.key(), i, value.value()[i] + u' ' + answers.value(i));
    }
    const QStringList nameStems = topicStems(foldedWords(textWords(known.names.join(u' '))));
    all += QSet<QString>{nameStems.begin(), nameStems.end()};
    for (const QString &stem : all)
        ++m_conceptCounts[stem];
}

bool ConceptIndex::isKnownWord(const QString &folded) const
{
    return m_conceptCounts.contains(wordStem(folded)) || isCommonWord(folded);
}

QStringList ConceptIndex::topicStems(const QStringList &words)
{
    QStringList stems;
    for (const QString &word : words) {
        if (!isCommonWord(word))
            stems += wordStem(word);
    }
    stems.removeDuplicates();
    return stems;
}

QList<TextWord> ConceptIndex::words(const QString &text) const
{
    QList<TextWord> written;
    for (const TextWord &word : textWords(text.left(longestRead))) {
        const auto form = m_shortForms.find(word.folded);
        if (form == m_shortForms.end()) {
            written += word;
            continue;
        }
        for (const QString &part : *form)
            written += TextWord{part, word.start, word.end};
    }
    return written;
}

ConceptIndex::Term ConceptIndex::termOf(const QString &folded)
{
    const QString stem = wordStem(folded);
    return {folded, stem, wordSound(stem)};
}

// How unlike the word that was said is to the word of a name.
int ConceptIndex::faults(const Term &said, const Term &named) const
{
    if (said.stem == named.stem)
        return 0;
    if (said.sound.isEmpty() || named.sound.isEmpty() || said.sound.front() != named.sound.front())
        return tooManyFaults;
    // A word that the notes use is not another one, mistyped.
    if (!m_conceptCounts.contains(said.stem) && isLikelyTypo(said.folded, named.folded))
        return 1;
    // "célula" for "celular", "miocárdico" for "miocardio".
    const qsizetype shared = std::min(said.stem.size(), named.stem.size());
    if (shared >= shortestShared && std::max(said.stem.size(), named.stem.size()) - shared <= 2
        && said.stem.first(shared) == named.stem.first(shared))
        return 2;
    return tooManyFaults;
}

// `name` in the topic words `said`, its first word at `first`.
std::optional<ConceptIndex::Candidate>
ConceptIndex::candidate(const Name &name, const QList<Term> &said, qsizetype first) const
{
    // Alone, a word has to be the very one.
    const int most = name.terms.size() == 1 ? 1 : 2;
    Candidate found{&name, first, first, 0};
    qsizetype at = first;
    qsizetype between = 0;
    for (qsizetype i = 0; i < name.terms.size(); ++at) {
        if (at == said.size())
            return std::nullopt;
        const int unlike = faults(said[at], name.terms[i]);
        if (unlike <= most) {
            found.faults += unlike;
            found.last = at;
            ++i;
        } else if (i == 0 || ++between > mostBetween) {
            return std::nullopt;
        }
    }
    found.faults += static_cast<int>(between);
    if (found.faults >= tooManyFaults)
        return std::nullopt;
    return found;
}

// Whether the short word of `words` at `place` is likely of another language: "Down the hatch".
static bool isForeign(const QList<TextWord> &words, qsizetype place)
{
    if (words[place].folded.size() > longestAmbiguous)
        return false;
    const auto isEnglish
        = [&](qsizetype i) { return i >= 0 && i < words.size() && isEnglishWord(words[i].folded); };
    if (isEnglish(place - 1) || isEnglish(place + 1))
        return true;
    bool holdsEnglish = false;
    bool holdsSpanish = false;
    for (const TextWord &word : words) {
        holdsEnglish = holdsEnglish || isEnglishWord(word.folded);
        holdsSpanish = holdsSpanish || isCommonWord(word.folded);
    }
    return holdsEnglish && !holdsSpanish;
}

QList<ConceptMention> ConceptIndex::mentions(const QList<TextWord> &words) const
{
    QList<Term> said;
    QList<qsizetype> places;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (isCommonWord(words[i].folded))
            continue;
        said += termOf(words[i].folded);
        places += i;
    }

    QList<Candidate> candidates;
    for (const Name &name : m_names) {
        for (qsizetype first = 0; first < said.size(); ++first) {
            if (auto found = candidate(name, said, first))
                candidates += *found;
        }
    }
    std::stable_sort(
        candidates.begin(), candidates.end(), [](const Candidate &a, const Candidate &b) {
            const auto rank = [](const Candidate &c) { return c.name->length - 4 * c.faults; };
            return rank(a) > rank(b);
        });

    QList<ConceptMention> found;
    QSet<qsizetype> taken;
    for (const Candidate &candidate : candidates) {
        bool isFree = true;
        for (qsizetype i = candidate.first; i <= candidate.last; ++i)
            isFree = isFree && !taken.contains(i);
        const qsizetype first = places[candidate.first];
        const qsizetype last = places[candidate.last];
        if (!isFree || (first == last && isForeign(words, first)))
            continue;
        for (qsizetype i = candidate.first; i <= candidate.last; ++i)
            taken += i;
        if (candidate.name->known) {
            found += ConceptMention{candidate.name->known, candidate.name->text, first,
                                    last - first + 1,
                                    candidate.name->isCommon ? 0 : candidate.name->length};
        }
    }
    std::sort(found.begin(), found.end(), [](const ConceptMention &a, const ConceptMention &b) {
        return a.firstWord < b.firstWord;
    });
    return found;
}

// Rare words tell more: an inverse document frequency over concepts.
double ConceptIndex::weight(const QString &stem) const
{
    const int count = m_conceptCounts.value(stem, 0);
    return std::log(1.0 + static_cast<double>(m_conceptCount) / (count + 0.5));
}

QList<LineMatch> ConceptIndex::linesAbout(const QStringList &words, const StudyConcept *known) const
{
    QStringList stems = topicStems(words);
    if (known) {
        for (const QString &stem : topicStems(foldedWords(textWords(known->title))))
            stems.removeAll(stem);
    }
    double whole = 0;
    for (const QString &stem : stems)
        whole += weight(stem);

    QList<LineMatch> matches;
    for (const Line &line : m_lines) {
        if (known && line.place.known != known)
            continue;
        LineMatch match{line.place, 0, 0};
        for (const QString &stem : stems) {
            if (!line.stems.contains(stem))
                continue;
            match.share += weight(stem) / whole;
            ++match.wordCount;
        }
        if (match.wordCount > 0)
            matches += match;
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const LineMatch &a, const LineMatch &b) { return a.share > b.share; });
    return matches;
}
