#include "QuestionReading.h"

#include "PlainSpanish.h"
#include "SpanishWords.h"
#include "StudyNotes.h"

#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

static constexpr qsizetype mostTopicWords = 7;
static constexpr qsizetype shortestAdverb = 7;

// What a section of notes/frases/pedidos.md asks for, and what the same words ask for once they
// name a concept.
struct Request
{
    QLatin1StringView section;
    QuestionKind alone;
    QuestionKind withTopic;
};

static constexpr std::array requests{
    Request{"punto"_L1, QuestionKind::Point, QuestionKind::Point},
    Request{"comparar"_L1, QuestionKind::Comparison, QuestionKind::Comparison},
    Request{"caso"_L1, QuestionKind::ClinicalCase, QuestionKind::ClinicalCase},
    Request{"preguntar"_L1, QuestionKind::Practice, QuestionKind::Practice},
    Request{"razonar"_L1, QuestionKind::Reasoning, QuestionKind::Reasoning},
    Request{"materia"_L1, QuestionKind::Subject, QuestionKind::Subject},
    Request{"resumir"_L1, QuestionKind::Summary, QuestionKind::Summary},
    Request{"paso a paso"_L1, QuestionKind::Explanation, QuestionKind::Explanation},
    Request{"explicar"_L1, QuestionKind::Concept, QuestionKind::Concept},
    Request{"respuestas"_L1, QuestionKind::Solutions, QuestionKind::Practice},
    Request{"corto"_L1, QuestionKind::Shorter, QuestionKind::Summary},
    Request{"simple"_L1, QuestionKind::Simpler, QuestionKind::Concept},
    Request{"otras preguntas"_L1, QuestionKind::MorePractice, QuestionKind::Practice},
    Request{"otro caso"_L1, QuestionKind::AnotherCase, QuestionKind::ClinicalCase},
    Request{"ejemplo"_L1, QuestionKind::Example, QuestionKind::Concept},
    Request{"seguir"_L1, QuestionKind::Continuation, QuestionKind::Explanation},
    Request{"gracias"_L1, QuestionKind::Thanks, QuestionKind::Concept},
    Request{"despedida"_L1, QuestionKind::Farewell, QuestionKind::Concept},
    Request{"ayuda"_L1, QuestionKind::Help, QuestionKind::Subject},
    Request{"entendido"_L1, QuestionKind::Acknowledgement, QuestionKind::Concept},
    Request{"saludo"_L1, QuestionKind::Greeting, QuestionKind::Concept},
};

static const Request *requestOf(const QString &section)
{
    const auto found = std::find_if(requests.begin(), requests.end(), [&](const Request &request) {
        return section == request.section;
    });
    return found == requests.end() ? nullptr : &*found;
}

static bool asksForStudy(const Request &request)
{
    return request.alone == request.withTopic && request.alone != QuestionKind::Point;
}

// The request that `matches` make: of a topic, the study requests of the table first; without one,
// what goes on with an answer or needs none, as the file has them.
static const Request *requestIn(const QList<PhraseMatch> &matches, bool hasTopic)
{
    const Request *best = nullptr;
    for (const PhraseMatch &match : matches) {
        const Request *request = requestOf(match.section);
        if (request && (!best || (hasTopic && request < best)))
            best = request;
    }
    return best;
}

// What a message asks for that names nothing the notes know, though it names something.
static QuestionKind kindOfUnknown(const QList<PhraseMatch> &matches, QuestionKind alone)
{
    for (const PhraseMatch &match : matches) {
        const Request *request = requestOf(match.section);
        if (request && asksForStudy(*request))
            return request->alone;
    }
    const bool isGreeting
        = alone == QuestionKind::Greeting || alone == QuestionKind::Acknowledgement;
    return isGreeting ? QuestionKind::Concept : alone;
}

static int numberIn(const QStringList &words, const QList<PhraseMatch> &matches)
{
    for (const PhraseMatch &match : matches) {
        // "2 preguntas más" has its number before the phrase.
        const qsizetype first = std::max<qsizetype>(0, match.firstWord - 1);
        for (qsizetype i = first; i < match.firstWord + match.wordCount; ++i) {
            const QString &word = words[i];
            if (word == "ultimo"_L1)
                return -1;
            // "una pregunta" is one, "un cuestionario" is as many as usual.
            const bool isArticle
                = (word == "un"_L1 || word == "una"_L1) && words.value(i + 1) != "pregunta"_L1;
            if (const int number = isArticle ? 0 : spokenNumber(word))
                return number;
        }
    }
    // "Tomame mitosis, 3 preguntas".
    for (qsizetype i = 0; i + 1 < words.size(); ++i) {
        if (words[i + 1] == "preguntas"_L1)
            return spokenNumber(words[i]);
    }
    return 0;
}

// The text from the first to the last of `places`, as it was written.
static QString writtenTopic(const QString &message, const QList<TextWord> &words,
                            const QList<qsizetype> &places)
{
    if (places.isEmpty() || places.last() - places.first() >= mostTopicWords)
        return {};
    const qsizetype start = words[places.first()].start;
    return topicText(message.sliced(start, words[places.last()].end - start));
}

static bool isBetweenSides(const QString &folded)
{
    static const QSet<QString> between{u"y"_s,   u"e"_s,      u"o"_s,      u"u"_s,    u"vs"_s,
                                       u"con"_s, u"versus"_s, u"contra"_s, u"entre"_s};
    return between.contains(folded);
}

// Whether a new side begins between two words of `message`: "EPOC, asma", "mitosis y meiosis".
static bool isSideEnd(const QString &message, const TextWord &before, const TextWord &word)
{
    if (isBetweenSides(word.folded))
        return true;
    const QString gap = message.sliced(before.end, std::max<qsizetype>(0, word.start - before.end));
    return gap.contains(u',') || gap.contains(u';') || gap.contains(u'/') || gap.contains(u':');
}

static bool isNumber(const QString &folded)
{
    return !folded.isEmpty()
        && std::all_of(folded.begin(), folded.end(), [](QChar c) { return c.isDigit(); });
}

// What stands side by side in `message`, of the words at `topicPlaces`.
static QStringList sidesOf(const QString &message, const QList<TextWord> &words,
                           const QSet<qsizetype> &topicPlaces)
{
    QStringList sides;
    QList<qsizetype> side;
    const auto close = [&] {
        if (const QString text = writtenTopic(message, words, side); !text.isEmpty())
            sides += text;
        side.clear();
    };
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (i > 0 && isSideEnd(message, words[i - 1], words[i]))
            close();
        if (topicPlaces.contains(i) && !isBetweenSides(words[i].folded))
            side += i;
    }
    close();
    return sides.size() > 1 ? sides : QStringList();
}

// The longest name says most: "las enzimas de la replicación del ADN".
static const StudyConcept *mainConcept(const QList<ConceptMention> &mentions)
{
    const auto longest = std::max_element(
        mentions.begin(), mentions.end(),
        [](const ConceptMention &a, const ConceptMention &b) { return a.length < b.length; });
    return longest == mentions.end() ? nullptr : longest->known;
}

// "Histológicamente" says how to tell, not what.
static bool isAdverb(const QString &folded)
{
    return folded.size() > shortestAdverb && folded.endsWith("mente"_L1);
}

// The sides of a comparison, each with the words that it shares with `name`, the first: in
// "transporte activo y pasivo" the second is "transporte pasivo".
static QStringList wholeSides(QStringList sides, const QString &name, const ConceptIndex &index)
{
    const QStringList named = name.split(u' ');
    for (QString &side : sides) {
        const QStringList said = side.split(u' ');
        const auto own = index.mentions(index.words(side));
        // A slip of the pen, as "trasnporte activo".
        if (own.size() == 1 && own.first().wordCount == said.size()
            && !std::all_of(said.begin(), said.end(), [&](const QString &word) {
                   return index.isKnownWord(foldedText(word));
               }))
            side = own.first().name;
        if (said.size() >= named.size() || !own.isEmpty())
            continue;
        const QString whole = (named.first(named.size() - said.size()) + said).join(u' ');
        const auto found = index.mentions(index.words(whole));
        if (found.size() == 1 && foldedText(found.first().name) == foldedText(whole))
            side = whole;
    }
    return sides;
}

QuestionReader::QuestionReader(const StudyNotes &notes)
    : m_index(notes.index())
    , m_requests(notes.phrases(u"pedidos"_s), u"si dice"_s)
    , m_aspects(notes.phrases(u"aspectos"_s), u"si dice"_s)
{ }

QuestionReading QuestionReader::read(const QString &message) const
{
    const QList<TextWord> words = m_index.words(message);
    const QList<ConceptMention> mentions = m_index.mentions(words);

    QuestionReading reading;
    reading.words = foldedWords(words);
    QSet<qsizetype> used;
    for (const ConceptMention &mention : mentions) {
        for (qsizetype i = 0; i < mention.wordCount; ++i)
            used += mention.firstWord + i;
        reading.names += mention.name;
        if (!reading.concepts.contains(mention.known))
            reading.concepts += mention.known;
    }
    reading.main = mainConcept(mentions);
    reading.hasOnlyCommonNames = std::all_of(
        mentions.begin(), mentions.end(), [](const auto &mention) { return mention.length == 0; });

    // What asks is told from what is asked about: "síntesis de proteínas" asks for no summary.
    QStringList asking = reading.words;
    for (const ConceptMention &mention : mentions) {
        // "Huesos del cráneo" asks for bones.
        const bool isAsked = mention.length == 0 && !reading.hasOnlyCommonNames;
        for (qsizetype i = 0; i < mention.wordCount && !isAsked; ++i)
            asking[mention.firstWord + i] = u"_"_s;
    }
    asking = m_requests.corrected(asking, [this](const QString &word) {
        return m_aspects.isPhraseWord(word) || m_index.isKnownWord(word);
    });
    reading.subject = StudyNotes::subjectIn(asking.join(u' '));

    const QList<PhraseMatch> requested = m_requests.matches(asking);
    const bool hasTopic = !reading.concepts.isEmpty() || !reading.subject.isEmpty();
    if (const Request *request = requestIn(requested, hasTopic))
        reading.kind = hasTopic ? request->withTopic : request->alone;
    reading.number = numberIn(asking, requested);
    reading.asksToExplain = std::any_of(requested.begin(), requested.end(), [](const auto &match) {
        return match.section == "explicar"_L1 || match.section == "simple"_L1;
    });

    QList<PhraseMatch> aspects = m_aspects.matches(asking);
    std::stable_sort(
        aspects.begin(), aspects.end(),
        [](const PhraseMatch &a, const PhraseMatch &b) { return a.firstWord < b.firstWord; });
    for (const PhraseMatch &match : std::as_const(aspects))
        reading.aspects += match.section;

    const QStringList subjectWords = foldedWords(textWords(reading.subject));
    for (qsizetype i = 0; i < asking.size(); ++i) {
        if (m_requests.isPhraseWord(asking[i]) || subjectWords.contains(asking[i]))
            used += i;
    }
    for (const PhraseMatch &match : aspects) {
        // A gap in a phrase may hold the topic itself.
        for (qsizetype i = match.firstWord; i < match.firstWord + match.wordCount; ++i) {
            if (m_aspects.isPhraseWord(asking[i]))
                used += i;
        }
    }
    QList<qsizetype> left;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (used.contains(i) || isCommonWord(reading.words[i]) || isAdverb(reading.words[i]))
            continue;
        reading.remainder += reading.words[i];
        left += i;
    }
    reading.topic = writtenTopic(message, words, left);
    QSet<qsizetype> topicPlaces{left.begin(), left.end()};
    for (const ConceptMention &mention : mentions) {
        for (qsizetype i = 0; i < mention.wordCount; ++i)
            topicPlaces += mention.firstWord + i;
    }
    // "Tipo 1 y tipo 2": what a name repeats belongs to the sides, and so does its number.
    const QStringList named = foldedWords(textWords(reading.names.value(0)));
    for (qsizetype i = 0; i + 1 < words.size(); ++i) {
        if (!isNumber(words[i + 1].folded))
            continue;
        if (named.contains(words[i].folded))
            topicPlaces += QSet<qsizetype>{i, i + 1};
        // "Diabetes 1 y 2".
        else if (isBetweenSides(words[i].folded) && isNumber(named.value(named.size() - 1)))
            topicPlaces += i + 1;
    }
    reading.sides = sidesOf(message, words, topicPlaces);
    // "Diferencias ectodermo endodermo".
    if (reading.kind == QuestionKind::Comparison && reading.sides.isEmpty()
        && reading.names.size() > 1)
        reading.sides = reading.names;
    if (reading.kind == QuestionKind::Comparison && reading.concepts.size() == 1) {
        reading.sides = wholeSides(reading.sides, reading.names.first(), m_index);
        for (const QString &side : std::as_const(reading.sides)) {
            const StudyConcept *known = m_index.mentions(m_index.words(side)).value(0).known;
            if (known && !reading.concepts.contains(known))
                reading.concepts += known;
        }
    }
    if (!hasTopic && !reading.remainder.isEmpty())
        reading.kind = kindOfUnknown(requested, reading.kind);
    return reading;
}
