#include "NoteAspects.h"

#include "FoldedText.h"
#include "PlainSpanish.h"
#include "StudyNotes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

static constexpr qsizetype mostLines = 3;
// The lines that a note has under an aspect's own key.
static constexpr qsizetype mostOfAspect = 8;
static constexpr qsizetype mostOthers = 4;
// A practice question is an answer where it is nearly what is asked.
static constexpr double sameQuestionShare = 0.7;
// An error says what is wrong: nobody may take it for a fact.
static const auto errorLabel = u"**Un error frecuente:** "_s;
// A line that holds this share of what is asked answers it.
static constexpr double enoughShare = 0.45;

NoteAspects::NoteAspects(const StudyNotes &notes)
    : m_index(notes.index())
    , m_aspects(notes.phrases(u"aspectos"_s))
{ }

const NoteSection *NoteAspects::section(const QString &aspect) const
{
    const auto found
        = std::find_if(m_aspects.begin(), m_aspects.end(),
                       [&](const NoteSection &section) { return section.title == aspect; });
    return found == m_aspects.end() ? nullptr : &*found;
}

static bool isSequence(const NoteSection &section)
{
    return section.values.value(u"clave"_s).contains("paso"_L1);
}

// The lines of `known` under the keys that `section` names by `by`.
static QStringList linesUnder(const NoteSection &section, const QString &by,
                              const StudyConcept &known)
{
    QStringList lines;
    for (const QString &key : section.values.value(by))
        lines += known.values.value(key);
    return lines;
}

static QStringList stemsOf(const QString &text)
{
    return ConceptIndex::topicStems(foldedWords(textWords(text)));
}

static bool holdsAll(const QStringList &said, const QStringList &stems)
{
    return std::all_of(stems.begin(), stems.end(),
                       [&](const QString &stem) { return said.contains(stem); });
}

QString NoteAspects::heading(const QuestionReading &reading) const
{
    for (const QString &aspect : reading.aspects) {
        if (section(aspect)->values.contains(u"clave"_s) && !isSequence(*section(aspect)))
            return aspect;
    }
    return u"Lo que preguntás"_s;
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
        return reading.aspects.contains("Errores frecuentes"_L1);
    return key != "paso"_L1 && !isCase(key);
}

QStringList NoteAspects::linesWith(const QStringList &stems, const StudyConcept &known)
{
    static const QStringList keys{
        u"qué es"_s,     u"distingue"_s, u"clave"_s,       u"función"_s,     u"partes"_s,
        u"tipos"_s,      u"fases"_s,     u"ubicación"_s,   u"relaciones"_s,  u"irrigación"_s,
        u"inervación"_s, u"cuándo"_s,    u"origen"_s,      u"derivados"_s,   u"herencia"_s,
        u"causas"_s,     u"síntomas"_s,  u"diagnóstico"_s, u"tratamiento"_s, u"complicaciones"_s,
        u"paso"_s,       u"clínica"_s,   u"error"_s,       u"pregunta"_s};
    QStringList lines;
    for (const QString &key : keys) {
        const qsizetype count = known.values.value(key).size();
        for (qsizetype i = 0; i < count; ++i) {
            const QString line = lineText({&known, key, i});
            if (holdsAll(stemsOf(line), stems))
                lines += key == "error"_L1 ? errorLabel + line : capitalized(line);
        }
    }
    return lines;
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

bool NoteAspects::isPart(const QString &name, const StudyConcept &known) const
{
    if (known.commonNames.contains(name)
        || m_index.mentions(m_index.words(name)).value(0).known != &known)
        return false;
    const QStringList stems = stemsOf(name);
    // What the definition speaks of is the whole, by another name.
    if (holdsAll(stemsOf(known.values.value(u"qué es"_s).value(0)), stems))
        return false;
    // "Epitelio" is no part of "tejido epitelial".
    const QStringList own = stemsOf(known.title);
    return std::none_of(stems.begin(), stems.end(), [&](const QString &stem) {
        return std::any_of(own.begin(), own.end(),
                           [&](const QString &word) { return word.startsWith(stem); });
    });
}

// The names in `reading` that narrow a question down to a part of `known`: "sintomas de la
// hemofilia" where the note is of the way it is inherited.
QStringList NoteAspects::partsIn(const QuestionReading &reading, const StudyConcept &known) const
{
    QStringList parts = reading.names;
    parts.removeIf([&](const QString &name) { return !isPart(name, known); });
    return parts;
}

// The facts of `known` that hold what `reading` says besides its title, the best first.
QStringList NoteAspects::matchingLines(const QuestionReading &reading,
                                       const StudyConcept &known) const
{
    QStringList words = reading.remainder;
    if (words.isEmpty())
        return {};
    for (const QString &name : partsIn(reading, known))
        words += foldedWords(textWords(name));
    QList<LineMatch> matches = m_index.linesAbout(words, &known);
    const QStringList asked = ConceptIndex::topicStems(reading.remainder);
    matches.removeIf([&](const LineMatch &match) {
        const QStringList said = stemsOf(lineText(match.line));
        return std::none_of(asked.begin(), asked.end(),
                            [&](const QString &stem) { return said.contains(stem); });
    });
    // Of lines that hold as much of it, a question with its answer says it best.
    std::stable_sort(matches.begin(), matches.end(), [](const LineMatch &a, const LineMatch &b) {
        const auto rank = [](const LineMatch &match) {
            return match.share + (match.line.key == "pregunta"_L1 ? 0.1 : 0);
        };
        return rank(a) > rank(b);
    });
    QStringList lines;
    for (const LineMatch &match : std::as_const(matches)) {
        if (match.share >= enoughShare && mayAnswer(match, reading) && lines.size() < mostLines)
            lines += capitalized(lineText(match.line));
    }
    lines.removeDuplicates();
    return lines;
}

// `lines` with those first that hold any of `stems`, the most of them before the others.
static QStringList sortedBy(const QStringList &stems, QStringList lines)
{
    const auto count = [&](const QString &line) {
        const QStringList said = stemsOf(line);
        return std::count_if(stems.begin(), stems.end(),
                             [&](const QString &stem) { return said.contains(stem); });
    };
    std::stable_sort(lines.begin(), lines.end(),
                     [&](const QString &a, const QString &b) { return count(a) > count(b); });
    return lines;
}

// Those of `lines` that speak of any of `parts`.
static QStringList linesOfParts(const QStringList &parts, QStringList lines)
{
    lines.removeIf([&](const QString &line) {
        const QStringList said = stemsOf(line);
        return std::none_of(parts.begin(), parts.end(),
                            [&](const QString &part) { return holdsAll(said, stemsOf(part)); });
    });
    return lines;
}

// The lines of a note on one side, those first that share the most words with the question; only
// those on the part that it names where there are any.
QStringList NoteAspects::linesOn(const QString &aspect, const QuestionReading &reading,
                                 const StudyConcept &known) const
{
    if (isSequence(*section(aspect)))
        return linesUnder(*section(aspect), u"clave"_s, known);
    QStringList asked = ConceptIndex::topicStems(reading.words);
    for (const QString &stem : stemsOf(known.title))
        asked.removeAll(stem);
    const QStringList all = sortedBy(asked, linesUnder(*section(aspect), u"clave"_s, known));
    const QStringList some = linesOfParts(partsIn(reading, known), all);
    return (some.isEmpty() ? all : some).mid(0, mostOfAspect);
}

// What the note says of the parts that `reading` names, the lines first that begin with one.
QStringList NoteAspects::linesOnParts(const QuestionReading &reading,
                                      const StudyConcept &known) const
{
    QStringList lines;
    for (const QString &name : partsIn(reading, known)) {
        const QStringList stems = stemsOf(name);
        // "**Deleción:** …" is about it, more than a line that begins with it by chance.
        const auto place = [&](const QString &line) {
            return 2 * stemsOf(line).indexOf(stems.first()) + (line.startsWith("**"_L1) ? 0 : 1);
        };
        QStringList own = factsOf(linesWith(stems, known), known);
        std::stable_sort(own.begin(), own.end(),
                         [&](const QString &a, const QString &b) { return place(a) < place(b); });
        lines += own.mid(0, mostLines);
    }
    lines.removeDuplicates();
    return lines;
}

QList<AspectLines> NoteAspects::answersTo(const QuestionReading &reading,
                                          const StudyConcept &known) const
{
    QList<AspectLines> answers;
    QStringList told;
    for (const QString &aspect : reading.aspects) {
        QStringList lines = linesOn(aspect, reading, known);
        lines.removeIf([&](const QString &line) { return told.contains(line); });
        if (lines.isEmpty())
            continue;
        told += lines;
        answers += AspectLines{aspect, lines, isSequence(*section(aspect))};
    }
    if (answers.isEmpty())
        return {};
    // Another line may say just what is asked.
    const QStringList asked = ConceptIndex::topicStems(reading.remainder);
    const bool isTold = std::any_of(told.begin(), told.end(), [&](const QString &line) {
        const QStringList said = stemsOf(line);
        return std::any_of(asked.begin(), asked.end(),
                           [&](const QString &stem) { return said.contains(stem); });
    });
    const QStringList direct = isTold ? QStringList() : matchingLines(reading, known);
    if (!direct.isEmpty())
        answers.prepend(AspectLines{u"Lo que preguntás"_s, direct});
    return answers;
}

bool NoteAspects::tellsOfOthers(const QString &key, const QuestionReading &reading) const
{
    return std::any_of(reading.aspects.begin(), reading.aspects.end(), [&](const QString &aspect) {
        const NoteValues &values = section(aspect)->values;
        return values.contains(u"de otros"_s) && values.value(u"clave"_s).contains(key);
    });
}

QStringList NoteAspects::others(const StudyConcept &known, const QList<AspectLines> &told) const
{
    QStringList names;
    for (const NoteSection &section : m_aspects) {
        const bool isTold = std::any_of(told.begin(), told.end(), [&](const AspectLines &lines) {
            return lines.heading == section.title;
        });
        const QStringList keys = section.values.value(u"clave"_s);
        const bool isOwn
            = !keys.contains(u"clave"_s) && !keys.contains(u"error"_s) && !isSequence(section);
        if (!isTold && isOwn && names.size() < mostOthers
            && !linesUnder(section, u"clave"_s, known).isEmpty())
            names += section.title.toLower();
    }
    return names;
}

QStringList NoteAspects::linesFor(const QuestionReading &reading, const StudyConcept &known) const
{
    QStringList lines = matchingLines(reading, known);
    const auto add = [&](const QStringList &more, qsizetype most) {
        for (const QString &line : more) {
            const QString sentence = capitalized(line);
            if (lines.size() < most && !lines.contains(sentence))
                lines += sentence;
        }
    };
    for (const QString &aspect : reading.aspects) {
        if (!isSequence(*section(aspect)))
            add(linesOn(aspect, reading, known), mostOfAspect);
    }
    add(linesOnParts(reading, known), mostLines);
    if (lines.isEmpty()) {
        for (const QString &aspect : reading.aspects)
            add(linesUnder(*section(aspect), u"si falta"_s, known), mostOfAspect);
    }
    return lines;
}
