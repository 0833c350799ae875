#include "EmergencyAnswers.h"

#include "ConceptIndex.h"
#include "FoldedText.h"
#include "StudyNotes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

static constexpr auto answerTitle = "respuesta: "_L1;
// How many words may stand beside a figure of speech, and how many an outpouring has, before it
// likely asks for something too.
static constexpr qsizetype mostBesides = 3;
static constexpr qsizetype longestOutpouring = 8;
static const auto suicide = u"suicidio"_s;
// In characters: longer than any phrase, so that none is lost where two parts meet.
static constexpr qsizetype overlap = 300;

// The answers, by emergency, with the numbers to call written out.
static QHash<QString, QStringList> answersIn(const QList<NoteSection> &sections)
{
    NoteValues numbers;
    for (const NoteSection &section : sections) {
        if (section.title == u"números"_s)
            numbers = section.values;
    }
    QHash<QString, QStringList> answers;
    for (const NoteSection &section : sections) {
        if (section.title.startsWith(answerTitle)) {
            answers.insert(section.title.sliced(answerTitle.size()),
                           fillForm(section.values.value(u"línea"_s), numbers));
        }
    }
    return answers;
}

enum class Keep { Emergencies, Frames };

// Those sections that have an answer, or those that have none.
static QList<NoteSection> sectionsOf(QList<NoteSection> sections, Keep keep,
                                     const QHash<QString, QStringList> &answers)
{
    sections.removeIf([&](const NoteSection &section) {
        return section.title != "listas"_L1
            && answers.contains(section.title) != (keep == Keep::Emergencies);
    });
    return sections;
}

EmergencyAnswers::EmergencyAnswers(const StudyNotes &notes)
    : m_index(notes.index())
    , m_answers(answersIn(notes.phrases(u"urgencias"_s)))
    , m_certain(sectionsOf(notes.phrases(u"urgencias"_s), Keep::Emergencies, m_answers),
                u"si dice"_s)
    , m_likely(sectionsOf(notes.phrases(u"urgencias"_s), Keep::Emergencies, m_answers),
               u"puede decir"_s)
    , m_frames(sectionsOf(notes.phrases(u"urgencias"_s), Keep::Frames, m_answers), u"si dice"_s)
{ }

// Whether `holds` the words of some part of `message`. Each part is read by itself: what is pasted
// into a message says nothing about the rest of it.
bool EmergencyAnswers::anyPart(const QString &message,
                               const std::function<bool(const QStringList &words)> &holds) const
{
    const auto holdsAt = [&](qsizetype start) {
        return holds(foldedWords(m_index.words(message.mid(start, ConceptIndex::longestRead))));
    };
    const qsizetype last = std::max<qsizetype>(0, message.size() - ConceptIndex::longestRead);
    for (qsizetype start = 0; start < last; start += ConceptIndex::longestRead - overlap) {
        if (holdsAt(start))
            return true;
    }
    return holdsAt(last);
}

std::optional<Answer> EmergencyAnswers::answerTo(const QString &message) const
{
    QString emergency;
    const bool isThere = anyPart(message, [&](const QStringList &words) {
        emergency = emergencyIn(words);
        return !emergency.isEmpty();
    });
    return isThere ? std::optional(Answer{m_answers.value(emergency), {}}) : std::nullopt;
}

std::optional<QString> EmergencyAnswers::careLine(const QString &message) const
{
    if (!anyPart(message, [this](const QStringList &words) { return mayBeFigurative(words); }))
        return std::nullopt;
    return m_answers.value(u"cuidado"_s).join(u' ');
}

// What `words` say without the figures of speech in them.
static QStringList literalWords(QStringList words, const PhraseBook &frames)
{
    while (const auto figure = frames.match(u"figurado"_s, words))
        words.remove(figure->firstWord, figure->wordCount);
    return words;
}

bool EmergencyAnswers::isOutpouring(const QString &message) const
{
    const QStringList words = foldedWords(m_index.words(message));
    const bool isWhole = literalWords(words, m_frames).size() <= mostBesides;
    return (m_frames.holds(u"desahogo"_s, words) && words.size() <= longestOutpouring)
        || (isWhole && m_frames.holds(u"figurado"_s, words)
            && m_frames.holds(u"de la carrera"_s, words));
}

bool EmergencyAnswers::mayBeFigurative(const QStringList &words) const
{
    return m_frames.holds(u"quizá figurado"_s, literalWords(words, m_frames))
        && m_frames.holds(u"de la carrera"_s, words) && !m_frames.holds(u"en serio"_s, words);
}

QString EmergencyAnswers::emergencyIn(const QStringList &said) const
{
    // What one book has for a word is no slip of a word of another.
    const auto isWord = [this](const QString &word) {
        return m_certain.isPhraseWord(word) || m_likely.isPhraseWord(word)
            || m_frames.isPhraseWord(word) || m_index.isKnownWord(word);
    };
    const QStringList words = m_likely.corrected(m_certain.corrected(said, isWord), isWord);
    const QStringList literal = literalWords(words, m_frames);
    const bool isOfAPatient
        = m_frames.holds(u"de un paciente"_s, literal) && !m_frames.holds(u"propio"_s, literal);
    if (isOfAPatient)
        return {};
    for (const PhraseMatch &match : m_certain.matches(literal)) {
        if (match.section != suicide || !mayBeFigurative(words))
            return match.section;
    }
    if (m_frames.holds(u"de estudio"_s, literal))
        return {};
    const QList<PhraseMatch> likely = m_likely.matches(literal);
    return likely.isEmpty() ? QString() : likely.first().section;
}
