#include "FollowUpAnswers.h"

#include "FoldedText.h"
#include "NoteForm.h"
#include "PlainSpanish.h"
#include "PracticeQuestions.h"
#include "StudyNotes.h"

#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

static constexpr qsizetype mostHelp = 3;
static const auto solutionsHeading = u"## Respuestas"_s;

// A numbered line of an answer.
struct NumberedLine
{
    int number = 0;
    QString text;
};

static QList<NumberedLine> numberedLines(const QString &answer)
{
    static const QRegularExpression numbered(u"^(\\d{1,3})\\.\\s+(.+)$"_s);
    QList<NumberedLine> lines;
    for (const QString &line : answer.split(u'\n')) {
        if (const auto match = numbered.match(line.trimmed()); match.hasMatch())
            lines += NumberedLine{match.captured(1).toInt(), match.captured(2)};
    }
    return lines;
}

// The points of an answer that numbers none.
static QList<NumberedLine> bulletLines(const QString &answer)
{
    QList<NumberedLine> lines;
    for (const QString &line : answer.split(u'\n')) {
        if (line.startsWith("- "_L1))
            lines += NumberedLine{static_cast<int>(lines.size()) + 1, line.sliced(2)};
    }
    return lines;
}

// The points of the newest answer that has any.
static QList<NumberedLine> lastPoints(const UserContext &context)
{
    for (auto turn = context.turns.rbegin(); turn != context.turns.rend(); ++turn) {
        QList<NumberedLine> lines = numberedLines(turn->answer);
        if (lines.isEmpty())
            lines = bulletLines(turn->answer);
        if (!lines.isEmpty())
            return lines;
    }
    return {};
}

// The texts that `lines` have under `number`; two where they are questions and their answers.
static QStringList textsAt(const QList<NumberedLine> &lines, int number)
{
    QStringList texts;
    for (const NumberedLine &line : lines) {
        if (line.number == number)
            texts += line.text;
    }
    return texts;
}

bool wasShown(const QString &text, const UserContext &context)
{
    return std::any_of(context.turns.begin(), context.turns.end(),
                       [&](const ChatTurn &turn) { return turn.answer.contains(text); });
}

FollowUpAnswers::FollowUpAnswers(const StudyNotes &notes)
    : m_notes(notes)
{ }

Answer FollowUpAnswers::point(const QuestionReading &reading, const UserContext &context,
                              const StudyConcept *known) const
{
    const QList<NumberedLine> lines = lastPoints(context);
    int largest = 0;
    for (const NumberedLine &line : lines)
        largest = std::max(largest, line.number);
    const int number = reading.number < 0 ? largest : reading.number;
    const QStringList texts = textsAt(lines, number);
    const QString title = known ? known->title : QString();

    NoteValues values;
    if (texts.isEmpty()) {
        if (largest > 0)
            values[u"cuántos"_s] = {QString::number(largest)};
        else
            values[u"nada"_s] = {QString()};
        values[u"ejemplo"_s] = {u"\"explicame %1\""_s.arg(known ? title : u"la mitosis"_s)};
        return {fillForm(m_notes.form(u"punto-que-no-esta"_s), values), title};
    }

    const QString text = texts.first();
    values[u"número"_s] = {QString::number(number)};
    values[u"punto"_s] = {text};
    if (texts.size() > 1) {
        values[u"solución"_s] = {texts.last()};
    } else {
        // Only steps follow from one another; other points just stand in a list.
        const QStringList steps = known ? known->values.value(u"paso"_s) : QStringList();
        const qsizetype step = steps.indexOf(text);
        if (step > 0)
            values[u"antes"_s] = {steps[step - 1]};
        if (step >= 0 && step + 1 < steps.size())
            values[u"después"_s] = {steps[step + 1]};
        const QString definition = known ? known->values.value(u"qué es"_s).value(0) : QString();
        if (step < 0 && !definition.isEmpty() && !text.contains(definition))
            values[u"definición"_s] = {definition};
    }

    // What the point takes for granted: other concepts it names, and what else the note says of it.
    QStringList help;
    const ConceptIndex &index = m_notes.index();
    const QList<TextWord> words = index.words(text);
    for (const ConceptMention &mention : index.mentions(words)) {
        if (mention.known != known && help.size() < mostHelp)
            help += mention.known->values.value(u"qué es"_s);
    }
    if (known) {
        for (const LineMatch &match : index.linesAbout(foldedWords(words), known)) {
            const QString line = known->values.value(match.line.key).value(match.line.index);
            // What an error says is wrong.
            const bool isOther = match.line.key == "clave"_L1 || match.line.key == u"clínica"_s;
            if (isOther && !texts.contains(line) && !help.contains(line) && help.size() < mostHelp)
                help += line;
        }
    }
    help.removeDuplicates();
    values[u"ayuda"_s] = help;
    return {fillForm(m_notes.form(u"punto"_s), values), title};
}

Answer FollowUpAnswers::solutions(const UserContext &context) const
{
    for (auto turn = context.turns.rbegin(); turn != context.turns.rend(); ++turn) {
        const QStringList lines = turn->answer.split(u'\n', Qt::SkipEmptyParts);
        const qsizetype heading = lines.indexOf(solutionsHeading);
        if (heading >= 0)
            return {lines.mid(heading), {}};
    }
    NoteValues values;
    values[u"ejemplo"_s] = {u"haceme 5 preguntas de anemia"_s};
    return {fillForm(m_notes.form(u"sin-tema"_s), values), {}};
}

Answer FollowUpAnswers::continuation(const StudyConcept &known, const UserContext &context) const
{
    // The parts of a note in the order they are learned: what it says of one, by key and by name.
    struct Part
    {
        QString name;
        QString key;
        QString place;
    };
    static const QList<Part> parts{
        {u"qué es"_s, u"qué es"_s, u"texto"_s},
        {u"cómo va, paso a paso"_s, u"paso"_s, u"numerado"_s},
        {u"lo que no podés olvidar"_s, u"clave"_s, u"renglón"_s},
        {u"en la clínica"_s, u"clínica"_s, u"texto"_s},
        {u"un error frecuente"_s, u"error"_s, u"texto"_s},
        {u"un caso"_s, u"caso"_s, u"texto"_s},
    };
    NoteValues values{{u"título"_s, {known.title}}};
    for (const auto &[name, key, place] : parts) {
        const QStringList lines = known.values.value(key);
        if (lines.isEmpty() || wasShown(lines.first(), context))
            continue;
        values[u"parte"_s] = {name};
        values[place] = lines;
        if (key == "caso"_L1)
            values[place] += known.values.value(u"resolución"_s);
        return {fillForm(m_notes.form(u"seguir"_s), values), known.title};
    }
    QStringList others;
    for (const StudyConcept *other : m_notes.conceptsOf(known.subject)) {
        const QString definition = other->values.value(u"qué es"_s).value(0);
        if (other != &known && others.size() < mostHelp && !wasShown(definition, context))
            others += "**"_L1 + other->title + "**"_L1;
    }
    values[u"cercanos"_s] = {spanishList(others)};
    return {fillForm(m_notes.form(u"seguir-fin"_s), values), known.title};
}
