#include "NoteAspects.h"

#include "FoldedText.h"
#include "PlainSpanish.h"
#include "StudyNotes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

static constexpr qsizetype mostLines = 3;
// The lines that a note has under an aspect's own key.
static constexpr qsizetype mostOfAspect = 8;
// A practice question is an answer where it is nearly what is asked.
static constexpr double sameQuestionShare = 0.7;
// An error says what is wrong: nobody may take it for a fact.
static const auto errorLabel = u"**Un error frecuente:** "_s;
// A line that holds this share of what is asked answers it.
static constexpr double enoughShare = 0.45;

NoteAspects::NoteAspects(const StudyNotes &notes)
    : m_index(notes.index())
    , m_signs(notes.phrases(u"aspectos"_s), u"busca"_s)
{
    for (const NoteSection &section : notes.phrases(u"aspectos"_s))
        m_aspects.insert(section.title, section.values);
}

QString NoteAspects::heading(const QuestionReading &reading) const
{
    const NoteValues aspect = m_aspects.value(reading.aspect);
    const bool isKnown
        = aspect.contains(u"busca"_s) || aspect.value(u"clave"_s).contains(u"error"_s);
    return isKnown ? reading.aspect : u"Lo que preguntás"_s;
}

QString NoteAspects::lineText(const NoteLine &line)
{
    const QString text = line.known->values.value(line.key).value(line.index);
    if (line.key != "pregunta"_L1)
        return text;
    return "**"_L1 + text + "** "_L1 + line.known->values.value(u"respuesta"_s).value(line.index);
}

// What a case tells is about one person and gives its own answer away.
static bool isCase(const QString &key)
{
    return key == "caso"_L1 || key == u"resolución"_s;
}

// An error stands under its own name only, and steps are told whole and in their order.
static bool mayAnswer(const LineMatch &match, const QuestionReading &reading)
{
    const QString &key = match.line.key;
    if (key == "pregunta"_L1)
        return match.share >= sameQuestionShare && match.wordCount > 1;
    if (key == "error"_L1)
        return reading.aspect == "Errores frecuentes"_L1;
    return key != "paso"_L1 && !isCase(key);
}

// `lines` without those that are steps, errors or practice questions of `known`.
static QStringList factsOf(QStringList lines, const StudyConcept &known)
{
    lines.removeIf([&](const QString &line) {
        const auto holds = [&](const QString &key) {
            const QStringList values = known.values.value(key);
            return std::any_of(values.begin(), values.end(), [&](const QString &value) {
                return line == capitalized(value) || line == errorLabel + value
                    || line.startsWith("**"_L1 + value);
            });
        };
        return holds(u"paso"_s) || holds(u"error"_s) || holds(u"pregunta"_s);
    });
    return lines;
}

QStringList NoteAspects::linesWith(const QStringList &stems, const StudyConcept &known)
{
    QStringList lines;
    for (const QString &key : {u"qué es"_s, u"distingue"_s, u"clave"_s, u"paso"_s, u"clínica"_s,
                               u"error"_s, u"pregunta"_s}) {
        const qsizetype count = known.values.value(key).size();
        for (qsizetype i = 0; i < count; ++i) {
            const QString line = lineText({&known, key, i});
            const QStringList said = ConceptIndex::topicStems(foldedWords(textWords(line)));
            const bool holdsAll = std::all_of(stems.begin(), stems.end(), [&](const QString &stem) {
                return said.contains(stem);
            });
            if (holdsAll)
                lines += key == "error"_L1 ? errorLabel + line : capitalized(line);
        }
    }
    return lines;
}

QStringList NoteAspects::linesFor(const QuestionReading &reading, const StudyConcept &known) const
{
    QStringList lines;
    const auto add = [&](const QStringList &more, qsizetype most = mostLines) {
        for (const QString &line : more) {
            const QString sentence = capitalized(line);
            if (lines.size() < most && !line.isEmpty() && !lines.contains(sentence))
                lines += sentence;
        }
    };

    const NoteValues aspect = m_aspects.value(reading.aspect);
    // What the question says besides the names.
    QList<LineMatch> matches = m_index.linesAbout(reading.remainder, &known);
    // Of lines that hold as much of it, a question with its answer says it best.
    std::stable_sort(matches.begin(), matches.end(), [](const LineMatch &a, const LineMatch &b) {
        const auto rank = [](const LineMatch &match) {
            return match.share + (match.line.key == "pregunta"_L1 ? 0.1 : 0);
        };
        return rank(a) > rank(b);
    });
    for (const LineMatch &match : std::as_const(matches)) {
        if (match.share >= enoughShare && mayAnswer(match, reading))
            add({lineText(match.line)});
    }
    for (const QString &key : aspect.value(u"clave"_s)) {
        if (key != "paso"_L1)
            add(known.values.value(key), mostOfAspect);
    }
    // A name may stand for a part of the concept: the lines that say so.
    for (const QString &name : reading.names) {
        const QStringList stems = ConceptIndex::topicStems(foldedWords(textWords(name)));
        const QStringList own = ConceptIndex::topicStems(foldedWords(textWords(known.title)));
        // "epitelio" is no part of "tejido epitelial".
        const bool isPart = std::none_of(stems.begin(), stems.end(), [&](const QString &stem) {
            return std::any_of(own.begin(), own.end(),
                               [&](const QString &word) { return word.startsWith(stem.left(5)); });
        });
        if (isPart && m_index.mentions(m_index.words(name)).value(0).known == &known)
            add(factsOf(linesWith(stems, known), known).mid(0, 2));
    }
    if (aspect.isEmpty())
        return lines;

    // A line that speaks of the aspect in its own words.
    for (const QString &key : {u"clínica"_s, u"clave"_s}) {
        const QStringList values = known.values.value(key);
        for (qsizetype i = 0; i < values.size(); ++i) {
            const NoteLine line{&known, key, i};
            const QStringList words = foldedWords(textWords(lineText(line)));
            if (m_signs.holds(reading.aspect, words))
                add({lineText(line)});
        }
    }
    // The case of the note shows what it looks like and what is done about it.
    const QString example = u"**En un caso:** "_s + known.values.value(u"caso"_s).value(0);
    if (reading.aspect == u"Síntomas y signos"_s)
        add({example}, mostLines + 1);
    if (reading.aspect == "Tratamiento"_L1 || reading.aspect == u"Diagnóstico"_s) {
        const QString resolution = known.values.value(u"resolución"_s).value(0);
        add({example + u" **Se resolvió así:** "_s + resolution}, mostLines + 1);
    }
    if (lines.isEmpty()) {
        for (const QString &keys : aspect.value(u"si falta"_s)) {
            for (const QString &key : keys.split(u", "_s))
                add(known.values.value(key), mostOfAspect);
        }
    }
    return lines;
}
