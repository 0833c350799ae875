#include "AnswerComposer.h"

#include "FollowUpAnswers.h"
#include "ImageFacts.h"
#include "PlainSpanish.h"
#include "PracticeQuestions.h"
#include "SpanishWords.h"
#include "StudyNotes.h"

#include <algorithm>

using namespace Qt::StringLiterals;

// What the program asks when an image is sent without text.
static constexpr QStringView imagePrompt = u"Analizá esta imagen con finalidad educativa médica.";
static constexpr qsizetype mostCompared = 4;
static constexpr qsizetype mostRecalled = 3;
static constexpr qsizetype mostNearby = 3;
static constexpr qsizetype mostMentions = 4;
static constexpr qsizetype shortestTopic = 6;
static constexpr qsizetype shortestNearby = 5;
static constexpr int usualQuestions = 5;
static constexpr int mostQuestions = 20;
// A line of the notes that holds this share of a question is what it asks for; one that holds the
// lesser share is worth naming.
static constexpr double answeringShare = 0.7;
static constexpr double reasoningShare = 0.45;
static constexpr double nearbyShare = 0.34;

static QString inBold(const QString &text)
{
    return "**"_L1 + text + "**"_L1;
}

static QStringList titlesOf(const QList<const StudyConcept *> &concepts)
{
    QStringList titles;
    for (const StudyConcept *known : concepts)
        titles += known->title;
    return titles;
}

static Answer &operator+=(Answer &answer, const QStringList &lines)
{
    answer.lines += lines;
    return answer;
}

// Whether `lines` speak of the words `asked`, rather than use one by the way: they hold several of
// them together, or come back to the only one. A short word often means something else there.
static bool isTopic(const QStringList &asked, const QList<LineMatch> &lines)
{
    const bool holdsSeveral = std::any_of(
        lines.begin(), lines.end(), [](const LineMatch &match) { return match.wordCount > 1; });
    return holdsSeveral || (lines.size() > 1 && asked.first().size() >= shortestTopic);
}

// Whether the concept of `match` has to do with the words `asked`, rather than use one of them for
// something else. `lineCount` is how many of its lines hold any.
static bool isRelated(const LineMatch &match, const QStringList &asked, qsizetype lineCount)
{
    if (match.wordCount > 1)
        return true;
    const StudyConcept &known = *match.line.known;
    const QStringList about = ConceptIndex::topicStems(foldedWords(
        textWords(known.names.join(u' ') + u' ' + known.values.value(u"qué es"_s).value(0))));
    const QStringList said
        = ConceptIndex::topicStems(foldedWords(textWords(NoteAspects::lineText(match.line))));
    return std::any_of(asked.begin(), asked.end(), [&](const QString &word) {
        const QString stem = ConceptIndex::topicStems({word}).value(0);
        const bool isTelling = asked.size() <= 2 && word.size() >= shortestTopic && lineCount > 1;
        return said.contains(stem) && (isTelling || about.contains(stem));
    });
}

AnswerComposer::AnswerComposer(const StudyNotes &notes)
    : m_notes(notes)
    , m_emergencies(notes)
    , m_reader(notes)
    , m_aspects(notes)
    , m_outside(notes.phrases(u"fuera"_s), u"si dice"_s)
{ }

Answer AnswerComposer::answer(const ChatQuestion &question, const UserContext &context) const
{
    if (question.image) {
        Answer answer = imageAnswer(question);
        if (const auto care = m_emergencies.careLine(question.message))
            answer.lines.prepend(*care);
        return answer;
    }
    Answer answer = textAnswer(question, context);
    if (const auto care = m_emergencies.careLine(question.message)) {
        if (answer.subject.isEmpty() || m_emergencies.isOutpouring(question.message))
            answer = {fillForm(m_notes.form(u"cuidado"_s), {}), {}};
        answer.lines.prepend(*care);
    } else if ((answer.subject.isEmpty() || StudyNotes::subjects().contains(answer.subject))
               && m_emergencies.isOutpouring(question.message)) {
        answer = {fillForm(m_notes.form(u"cuidado"_s), {}), {}};
    }
    return answer;
}

Answer AnswerComposer::textAnswer(const ChatQuestion &question, const UserContext &context) const
{
    Request request{m_reader.read(question.message), context, {}, {}};
    const QuestionReading &reading = request.reading;
    switch (reading.kind) {
    case QuestionKind::Greeting:
        return socialAnswer(u"saludo"_s, context);
    case QuestionKind::Thanks:
        return socialAnswer(u"gracias"_s, context);
    case QuestionKind::Farewell:
        return socialAnswer(u"despedida"_s, context);
    case QuestionKind::Acknowledgement:
        return socialAnswer(u"entendido"_s, context);
    case QuestionKind::Help:
        return {fillForm(m_notes.form(u"ayuda"_s), serviceValues(context)), {}};
    case QuestionKind::Solutions:
        return FollowUpAnswers(m_notes).solutions(context);
    default:
        break;
    }

    // A prompt sent as it stands names nothing on purpose.
    const bool isBarePrompt = question.message.trimmed().endsWith(u':') && reading.topic.isEmpty()
        && reading.concepts.isEmpty();
    const auto concepts = conceptsFor(reading, context);
    if (isBarePrompt)
        return withoutTopic(request);
    if (concepts)
        request.concepts = *concepts;
    if (!request.concepts.contains(reading.main))
        request.reading.main = request.concepts.value(0);
    request.subject = reading.subject;
    if (request.concepts.isEmpty() && request.subject.isEmpty()) {
        if (reading.kind == QuestionKind::Point)
            return FollowUpAnswers(m_notes).point(reading, context, nullptr);
        if (reading.remainder.isEmpty())
            return withoutTopic(request);
        if (reading.kind == QuestionKind::Subject)
            return unknown(request);
        if (reading.kind == QuestionKind::Comparison) {
            if (auto answer = partsComparison(request))
                return *answer;
        }
        // A sign that a case adds detail to is worth reasoning on all the same.
        const double enough
            = reading.kind == QuestionKind::Reasoning ? reasoningShare : answeringShare;
        QList<LineMatch> lines = linesAbout(reading);
        lines.removeIf([&](const LineMatch &match) { return match.share < enough; });
        return isTopic(reading.remainder, lines) ? mentionsAnswer(request, lines)
                                                 : unknown(request);
    }

    Answer answer;
    switch (reading.kind) {
    case QuestionKind::Point:
        return FollowUpAnswers(m_notes).point(reading, context, request.concepts.value(0));
    case QuestionKind::Continuation:
        if (!request.concepts.isEmpty())
            return FollowUpAnswers(m_notes).continuation(*request.concepts.first(), context);
        answer = subjectAnswer(request);
        break;
    case QuestionKind::Practice:
    case QuestionKind::MorePractice:
        answer = practice(request);
        break;
    case QuestionKind::ClinicalCase:
    case QuestionKind::AnotherCase:
        answer = clinicalCase(request);
        break;
    case QuestionKind::Comparison:
        answer = comparison(request);
        break;
    case QuestionKind::Explanation:
        answer = conceptAnswer(u"explicar"_s, request);
        break;
    case QuestionKind::Reasoning:
        answer = conceptAnswer(u"razonar"_s, request);
        break;
    case QuestionKind::Summary:
        answer = conceptAnswer(u"resumen"_s, request);
        break;
    case QuestionKind::Shorter:
        return conceptAnswer(u"corto"_s, request);
    case QuestionKind::Simpler:
        return simpler(request);
    case QuestionKind::Example:
        return example(request);
    case QuestionKind::Subject:
        request.reading.asksToExplain = true;
        answer = request.concepts.isEmpty() ? subjectAnswer(request)
                                            : conceptAnswer(u"concepto"_s, request);
        break;
    default:
        answer = conceptAnswer(u"concepto"_s, request);
        break;
    }

    if (context.turns.isEmpty() && !answer.subject.isEmpty()) {
        UserContext earlier = context;
        earlier.subjects.removeAll(answer.subject);
        answer += fillForm(m_notes.form(u"pie"_s), serviceValues(earlier));
    }
    return answer;
}

// The lines of all notes that speak of what is left of a question besides names. Cases tell of one
// person.
QList<LineMatch> AnswerComposer::linesAbout(const QuestionReading &reading) const
{
    QList<LineMatch> lines = m_notes.index().linesAbout(reading.remainder, nullptr);
    lines.removeIf([](const LineMatch &match) {
        return match.line.key == "caso"_L1 || match.line.key == u"resolución"_s;
    });
    return lines;
}

// What a question is about: what it names, what the only line that answers it belongs to, or what
// the conversation is about. Nothing where it asks for something that is not known.
std::optional<AnswerComposer::Concepts>
AnswerComposer::conceptsFor(const QuestionReading &reading, const UserContext &context) const
{
    const ConceptIndex &index = m_notes.index();
    const auto inContext = [&]() -> Concepts {
        Concepts found;
        if (!context.subjects.isEmpty()) {
            for (const ConceptMention &mention :
                 index.mentions(index.words(context.subjects.first()))) {
                if (!found.contains(mention.known))
                    found += mention.known;
            }
        }
        return found;
    };

    // "El músculo deltoides": not what the note of muscle is about.
    const bool isOfAnother = reading.kind == QuestionKind::Concept && reading.hasOnlyCommonNames
        && !reading.remainder.isEmpty()
        && index.linesAbout(reading.remainder, reading.main).isEmpty();
    if (!reading.concepts.isEmpty() && !isOfAnother) {
        // "¿Y en qué se diferencia de la meiosis?"
        const Concepts earlier = inContext();
        const bool goesOn = reading.kind == QuestionKind::Comparison && !context.turns.isEmpty()
            && reading.concepts.size() == 1 && reading.remainder.isEmpty() && earlier.size() == 1
            && earlier != reading.concepts;
        if (goesOn)
            return earlier + reading.concepts;
        // "¿Qué enzima une los fragmentos de Okazaki?" names enzymes by the way.
        // The line that answers it names them too.
        const QStringList named
            = ConceptIndex::topicStems(foldedWords(textWords(reading.names.join(u' '))));
        QList<LineMatch> elsewhere = linesAbout(reading);
        elsewhere.removeIf([&](const LineMatch &match) {
            const QStringList said = ConceptIndex::topicStems(
                foldedWords(textWords(NoteAspects::lineText(match.line))));
            return std::none_of(named.begin(), named.end(),
                                [&](const QString &stem) { return said.contains(stem); });
        });
        const bool isAnswered = !elsewhere.isEmpty() && elsewhere.first().share >= answeringShare
            && elsewhere.first().wordCount > 1;
        const auto here = index.linesAbout(reading.remainder, reading.main);
        const bool isAnsweredHere = !here.isEmpty() && here.first().share >= reasoningShare;
        if (reading.kind == QuestionKind::Concept && isAnswered && !isAnsweredHere)
            return Concepts{elsewhere.first().line.known};
        return reading.concepts;
    }
    if (!reading.subject.isEmpty())
        return std::nullopt;

    const bool isFollowUp = reading.kind >= QuestionKind::Point;
    if (isFollowUp || reading.remainder.isEmpty()) {
        const bool asksForSomething
            = reading.kind != QuestionKind::Concept || !reading.aspects.isEmpty();
        return asksForSomething ? std::optional(inContext()) : std::nullopt;
    }

    // "¿Y en los diabéticos?" goes on with the conversation where its note has an answer.
    if (reading.words.startsWith(u"y"_s)) {
        for (const StudyConcept *known : inContext()) {
            const auto lines = index.linesAbout(reading.remainder, known);
            if (!lines.isEmpty() && lines.first().share >= answeringShare)
                return Concepts{known};
        }
    }
    const auto lines = linesAbout(reading);
    for (const LineMatch &match : lines) {
        if (match.share >= answeringShare && m_aspects.tellsOfOthers(match.line.key, reading))
            return Concepts{match.line.known};
    }
    // What is asked for by its name alone has no note of its own.
    const bool isName = reading.aspects.isEmpty() && !reading.asksToExplain
        && reading.kind == QuestionKind::Concept && reading.remainder.size() <= 2;
    if (isName || reading.kind == QuestionKind::Comparison || lines.isEmpty()
        || lines.first().share < answeringShare || lines.first().wordCount < 2)
        return std::nullopt;
    return Concepts{lines.first().line.known};
}

NoteValues AnswerComposer::serviceValues(const UserContext &context) const
{
    NoteValues values;
    values[u"cantidad"_s] = {QString::number(m_notes.concepts().size())};
    values[u"materias"_s] = {spanishList(StudyNotes::subjects())};
    QStringList recalled;
    for (const QString &subject : context.subjects.mid(0, mostRecalled))
        recalled += inBold(subject);
    if (!recalled.isEmpty()) {
        values[u"anteriores"_s] = {spanishList(recalled)};
        values[u"anterior"_s] = {recalled.first()};
    } else {
        values[u"nuevo"_s] = {QString()};
    }
    return values;
}

Answer AnswerComposer::socialAnswer(const QString &form, const UserContext &context) const
{
    return {fillForm(m_notes.form(form), serviceValues(context)), {}};
}

Answer AnswerComposer::withoutTopic(const Request &request) const
{
    NoteValues values = serviceValues(request.context);
    switch (request.reading.kind) {
    case QuestionKind::Comparison:
        values[u"ejemplo"_s] = {u"Compará estos conceptos: mitosis y meiosis"_s};
        break;
    case QuestionKind::Practice:
        values[u"ejemplo"_s] = {u"Creá preguntas de autoevaluación sobre: anemia"_s};
        break;
    case QuestionKind::ClinicalCase:
        values[u"ejemplo"_s] = {u"Quiero trabajar con un caso clínico sobre: neumonía"_s};
        break;
    case QuestionKind::Reasoning:
        values[u"ejemplo"_s] = {u"Ayudame a razonar clínicamente sobre: anemia"_s};
        break;
    default:
        values[u"ejemplo"_s] = {u"Explicame paso a paso: mitosis"_s};
        break;
    }
    return {fillForm(m_notes.form(u"sin-tema"_s), values), {}};
}

// At most four lines: that it is not known, and the nearest that is.
Answer AnswerComposer::unknown(const Request &request) const
{
    NoteValues values = serviceValues(request.context);
    if (m_outside.holds(u"fuera"_s, request.reading.words)) {
        values[u"fuera"_s] = {QString()};
        return {fillForm(m_notes.form(u"desconocido"_s), values), {}};
    }
    if (request.reading.topic.isEmpty())
        values[u"sin nombre"_s] = {QString()};
    else
        values[u"tema"_s] = {request.reading.topic};

    QStringList nearby;
    QString subject;
    // Alone, a short word often means something else in the notes: a drop for the gout.
    const QStringList &asked = request.reading.remainder;
    const bool isTelling = asked.size() > 1 || asked.value(0).size() >= shortestNearby;
    const QList<LineMatch> lines = isTelling ? linesAbout(request.reading) : QList<LineMatch>();
    QHash<const StudyConcept *, qsizetype> counts;
    for (const LineMatch &match : lines)
        ++counts[match.line.known];
    for (const LineMatch &match : lines) {
        if (match.share < nearbyShare || nearby.size() == mostNearby)
            break;
        if (!isRelated(match, asked, counts[match.line.known])
            || (!subject.isEmpty() && match.line.known->subject != subject))
            continue;
        subject = match.line.known->subject;
        const QString title = inBold(match.line.known->title);
        if (nearby.contains(title))
            continue;
        nearby += title;
        if (match.share < answeringShare || values.contains(u"cercano"_s))
            continue;
        const QString text = match.line.known->values.value(match.line.key).value(match.line.index);
        const QStringList answers = match.line.key == "pregunta"_L1
            ? match.line.known->values.value(u"respuesta"_s)
            : QStringList();
        values[u"cercano"_s] = {title};
        values[u"renglón"_s] = {(text + u' ' + answers.value(match.line.index)).trimmed()};
    }
    if (!nearby.isEmpty())
        values[u"cercanos"_s] = {spanishList(nearby)};
    return {fillForm(m_notes.form(u"desconocido"_s), values), {}};
}

// What the notes say here and there of something that has no note of its own.
Answer AnswerComposer::mentionsAnswer(const Request &request, const QList<LineMatch> &lines) const
{
    // The concepts that speak of it most come first.
    QHash<const StudyConcept *, int> counts;
    for (const LineMatch &match : lines)
        ++counts[match.line.known];
    Concepts concepts;
    for (const LineMatch &match : lines) {
        if (!concepts.contains(match.line.known))
            concepts += match.line.known;
    }
    std::stable_sort(concepts.begin(), concepts.end(),
                     [&](const auto *a, const auto *b) { return counts[a] > counts[b]; });

    Request about = request;
    about.concepts = concepts.mid(0, 1);
    switch (request.reading.kind) {
    case QuestionKind::Practice:
        about.concepts = concepts.mid(0, mostNearby);
        return practice(about);
    case QuestionKind::ClinicalCase:
        return clinicalCase(about);
    default:
        break;
    }

    const bool asksToReason = request.reading.kind == QuestionKind::Reasoning;
    const QString topic = request.reading.topic.isEmpty() ? request.reading.remainder.join(u' ')
                                                          : request.reading.topic;
    NoteValues values{{u"Tema"_s, {capitalized(topic)}}, {u"tema"_s, {topic}}};
    for (const StudyConcept *known : concepts.mid(0, mostMentions)) {
        const auto match = std::find_if(lines.begin(), lines.end(), [&](const LineMatch &line) {
            return line.line.known == known;
        });
        values[u"concepto"_s] += known->title;
        values[u"renglón"_s] += capitalized(NoteAspects::lineText(match->line));
        values[u"distingue"_s] += capitalized(known->values.value(u"distingue"_s).value(0));
    }
    const QString form = asksToReason ? u"razonar-signo"_s : u"menciones"_s;
    return {fillForm(m_notes.form(form), values), concepts.first()->title};
}

// The stems of each side without those of the names of `known`, which tell its sides apart no more
// than its title does: in "el hueso compacto y el esponjoso" every line speaks of bone.
static QList<QStringList> stemsWithoutNames(QList<QStringList> sides, const StudyConcept &known)
{
    const QStringList names
        = ConceptIndex::topicStems(foldedWords(textWords(known.names.join(u' '))));
    for (QStringList &side : sides) {
        QStringList telling = side;
        telling.removeIf([&](const QString &stem) { return names.contains(stem); });
        if (!telling.isEmpty())
            side = telling;
    }
    return sides;
}

// What one note says of each of the sides of a question: "genotipo y fenotipo".
std::optional<Answer> AnswerComposer::partsComparison(const Request &request) const
{
    const QStringList sides = request.reading.sides.mid(0, mostCompared);
    if (sides.size() < 2)
        return std::nullopt;
    QList<QStringList> stems;
    for (const QString &side : sides)
        stems += ConceptIndex::topicStems(foldedWords(textWords(side)));
    // What all have in common, as the bone in "hueso compacto y esponjoso", tells none apart.
    const QStringList first = stems.first();
    for (const QString &stem : first) {
        const bool isCommon = std::all_of(stems.begin(), stems.end(), [&](const QStringList &some) {
            return some.size() > 1 && some.contains(stem);
        });
        if (isCommon) {
            for (QStringList &some : stems)
                some.removeAll(stem);
        }
    }
    Concepts candidates = request.concepts;
    if (candidates.isEmpty()) {
        for (const LineMatch &match : linesAbout(request.reading)) {
            if (!candidates.contains(match.line.known))
                candidates += match.line.known;
        }
    }
    for (const StudyConcept *known : std::as_const(candidates)) {
        NoteValues values{{u"Tema"_s, {capitalized(spanishList(sides))}},
                          {u"título"_s, {known->title}}};
        const QList<QStringList> tellingStems = stemsWithoutNames(stems, *known);
        QStringList every;
        for (const QStringList &some : tellingStems)
            every += some;
        const QStringList together = NoteAspects::linesWith(every, *known);
        QStringList lines{fillForm(m_notes.form(u"comparar-partes"_s), values)};
        bool isWhole = true;
        if (!together.isEmpty())
            lines += fillForm(m_notes.form(u"comparar-lado"_s),
                              {{u"lado"_s, {u"Frente a frente"_s}}, {u"renglón"_s, together}});
        for (qsizetype i = 0; i < sides.size(); ++i) {
            QStringList own = NoteAspects::linesWith(tellingStems[i], *known);
            // In "gemelos dicigóticos" the last word tells.
            if (own.isEmpty())
                own = NoteAspects::linesWith({tellingStems[i].last()}, *known);
            isWhole = isWhole && !own.isEmpty();
            for (const QString &line : together)
                own.removeAll(line);
            lines
                += fillForm(m_notes.form(u"comparar-lado"_s),
                            {{u"lado"_s, {capitalized(sides[i])}}, {u"renglón"_s, own.mid(0, 3)}});
        }
        if (isWhole)
            return Answer{lines, known->title};
    }
    return std::nullopt;
}

// What an answer is called: by the name that the question used, where that is another.
QString AnswerComposer::titleFor(const StudyConcept &known, const QuestionReading &reading) const
{
    for (const QString &name : reading.names) {
        if (m_aspects.isPart(name, known))
            return u"%1 (%2)"_s.arg(capitalized(name), known.title);
    }
    return known.title;
}

NoteValues AnswerComposer::conceptValues(const StudyConcept &known,
                                         const QuestionReading &reading) const
{
    NoteValues values = known.values;
    values[u"título"_s] = {titleFor(known, reading)};
    values[u"clave principal"_s] = known.values.value(u"clave"_s).mid(0, 1);
    values[u"pregunta inicial"_s] = known.values.value(u"pregunta"_s).mid(0, 1);
    QStringList direct = m_aspects.linesFor(reading, known);
    if (reading.asksToExplain || !reading.aspects.isEmpty() || !direct.isEmpty())
        values[u"paso a explicar"_s] = known.values.value(u"paso"_s);
    // What is said first is not said again.
    direct.removeAll(known.values.value(u"qué es"_s).value(0));
    for (const QString &key : {u"clave"_s, u"clínica"_s, u"error"_s, u"distingue"_s}) {
        values[key].removeIf(
            [&](const QString &line) { return direct.contains(capitalized(line)); });
    }
    if (!direct.isEmpty()) {
        values[u"directo"_s] = direct;
        values[u"aspecto"_s] = {m_aspects.heading(reading)};
    }
    return values;
}

Answer AnswerComposer::conceptAnswer(const QString &form, const Request &request) const
{
    if (request.concepts.isEmpty())
        return subjectAnswer(request);
    // A question about several at once is about how they go together.
    if (request.concepts.size() > 1 && request.reading.sides.size() > 1
        && request.reading.remainder.isEmpty() && request.reading.aspects.isEmpty()
        && !request.reading.asksToExplain && form == "concepto"_L1)
        return comparison(request);
    if (form == "corto"_L1) {
        Answer answer;
        for (const StudyConcept *known : request.concepts)
            answer += fillForm(m_notes.form(form), conceptValues(*known, request.reading));
        answer.subject = spanishList(titlesOf(request.concepts));
        return answer;
    }
    const StudyConcept &known
        = request.reading.main ? *request.reading.main : *request.concepts.first();
    if (form == "concepto"_L1) {
        if (const auto answers = m_aspects.answersTo(request.reading, known); !answers.isEmpty())
            return aspectAnswer(known, request.reading, answers);
    }
    return {fillForm(m_notes.form(form), conceptValues(known, request.reading)), known.title};
}

// The sides of a concept that were asked for, before anything else about it.
Answer AnswerComposer::aspectAnswer(const StudyConcept &known, const QuestionReading &reading,
                                    const QList<AspectLines> &answers) const
{
    NoteValues values = known.values;
    values[u"título"_s] = {titleFor(known, reading)};
    // What is said first is not said again.
    for (const QString &key : {u"qué es"_s, u"distingue"_s, u"clínica"_s}) {
        values[key].removeIf([&](const QString &line) {
            return std::any_of(answers.begin(), answers.end(), [&](const AspectLines &told) {
                return told.lines.contains(capitalized(line));
            });
        });
    }
    QStringList lines = fillForm(m_notes.form(u"aspecto"_s), values);
    // The sides come between the title and what is said to place them.
    qsizetype place = 1;
    for (const auto &[heading, facts, isSequence] : answers) {
        const QString side = isSequence ? u"aspecto-pasos"_s : u"aspecto-lado"_s;
        const NoteValues told{{u"aspecto"_s, {heading}}, {u"directo"_s, facts}};
        for (const QString &line : fillForm(m_notes.form(side), told))
            lines.insert(place++, line);
    }
    if (const QStringList others = m_aspects.others(known, answers); !others.isEmpty())
        lines
            += fillForm(m_notes.form(u"aspecto-otros"_s), {{u"aspecto"_s, {spanishList(others)}}});
    return {lines, known.title};
}

Answer AnswerComposer::comparison(const Request &request) const
{
    if (request.concepts.isEmpty())
        return unknown(request);
    const Concepts compared = request.concepts.mid(0, mostCompared);
    const QStringList titles = titlesOf(compared);

    NoteValues values;
    values[u"Tema"_s] = {spanishList(titles)};
    if (compared.size() == 1) {
        if (auto answer = partsComparison(request))
            return *answer;
        const StudyConcept &known = *compared.first();
        // "Los tipos de músculo, ¿en qué se diferencian?"
        const QStringList types = known.values.value(u"tipos"_s);
        if (!request.reading.topic.isEmpty())
            values[u"falta"_s] = {request.reading.topic};
        else if (types.isEmpty())
            values[u"falta otro"_s] = {QString()};
        values[u"directo"_s] = types + m_aspects.linesFor(request.reading, known)
            + known.values.value(u"qué es"_s)
            + QStringList{u"**Lo distingue:** "_s + known.values.value(u"distingue"_s).value(0)};
        values[u"directo"_s].removeDuplicates();
        return {fillForm(m_notes.form(u"comparar"_s), values), known.title};
    }

    Answer answer{fillForm(m_notes.form(u"comparar"_s), values), spanishList(titles)};
    struct Row
    {
        QString aspect;
        QString key;
        QString separator;
    };
    static const QList<Row> rows{
        {u"Qué es"_s, u"qué es"_s, {}},
        {u"Lo que lo distingue"_s, u"distingue"_s, {}},
        {u"Cómo va, paso a paso"_s, u"paso"_s, u" → "_s},
        {u"Claves"_s, u"clave"_s, u" "_s},
        {u"En la clínica"_s, u"clínica"_s, {}},
        {u"El error frecuente"_s, u"error"_s, {}},
    };
    for (const auto &[aspect, key, separator] : rows) {
        NoteValues row{{u"aspecto"_s, {aspect}}};
        for (const StudyConcept *known : compared) {
            QStringList lines = known->values.value(key);
            if (separator == u" → "_s) {
                for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
                    if (lines[i].endsWith(u'.'))
                        lines[i].chop(1);
                }
            }
            row[u"concepto"_s] += known->title;
            row[u"valor"_s] += lines.join(separator);
        }
        answer += fillForm(m_notes.form(u"comparar-renglon"_s), row);
    }
    return answer;
}

// The questions of `concepts`, one of each in turn.
static QList<PracticeQuestion> questionsOf(const QList<const StudyConcept *> &concepts)
{
    QList<QList<PracticeQuestion>> ofEach;
    qsizetype most = 0;
    for (const StudyConcept *known : concepts) {
        ofEach += practiceQuestions(*known);
        most = std::max(most, ofEach.last().size());
    }
    QList<PracticeQuestion> questions;
    for (qsizetype i = 0; i < most; ++i) {
        for (const QList<PracticeQuestion> &some : ofEach)
            questions += some.mid(i, 1);
    }
    return questions;
}

QStringList AnswerComposer::otherTitles(const StudyConcept &known) const
{
    QStringList titles;
    for (const StudyConcept *other : m_notes.conceptsOf(known.subject)) {
        if (other != &known && titles.size() < mostNearby)
            titles += inBold(other->title);
    }
    return titles;
}

Answer AnswerComposer::practice(const Request &request) const
{
    const QuestionReading &reading = request.reading;
    const Concepts concepts
        = request.concepts.isEmpty() ? m_notes.conceptsOf(request.subject) : request.concepts;
    const QString about
        = request.concepts.isEmpty() ? request.subject : spanishList(titlesOf(concepts));
    if (concepts.isEmpty())
        return withoutTopic(request);

    // What was not asked in this conversation comes first.
    QList<PracticeQuestion> fresh;
    QList<PracticeQuestion> asked;
    for (const PracticeQuestion &question : questionsOf(concepts))
        (wasShown(question.text, request.context) ? asked : fresh) += question;
    const QList<PracticeQuestion> known
        = reading.kind == QuestionKind::MorePractice ? fresh : fresh + asked;

    NoteValues values{{u"Tema"_s, {about}}, {u"tema"_s, {about}}};
    if (known.isEmpty()) {
        values[u"cercanos"_s] = {spanishList(otherTitles(*concepts.first()))};
        return {fillForm(m_notes.form(u"sin-mas-preguntas"_s), values), about};
    }
    const int wanted = reading.number > 0 ? reading.number : usualQuestions;
    const qsizetype given = std::min<qsizetype>({wanted, mostQuestions, known.size()});
    if (reading.number > given) {
        values[u"pedidas"_s] = {QString::number(wanted)};
        values[u"hay"_s] = {given == mostQuestions ? u"%1 como máximo por vez"_s.arg(given)
                                                   : QString::number(given)};
    }
    if (reading.words.contains(u"choice"_s) || reading.words.contains(u"opciones"_s))
        values[u"opciones"_s] = {QString()};
    for (const PracticeQuestion &question : known.first(given)) {
        values[u"pregunta"_s] += question.text;
        values[u"respuesta"_s] += question.answer;
    }
    return {fillForm(m_notes.form(u"practicar"_s), values), about};
}

Answer AnswerComposer::clinicalCase(const Request &request) const
{
    const QuestionReading &reading = request.reading;
    const auto isNew = [&](const StudyConcept *known) {
        return !wasShown(known->values.value(u"caso"_s).value(0), request.context);
    };
    const StudyConcept *asked
        = request.reading.main ? request.reading.main : request.concepts.value(0);
    const StudyConcept *chosen = asked;
    if (!asked || (!isNew(asked) && reading.kind == QuestionKind::AnotherCase)) {
        const Concepts pool = m_notes.conceptsOf(asked ? asked->subject : request.subject);
        const auto found = std::find_if(pool.begin(), pool.end(), isNew);
        chosen = found == pool.end() ? (asked ? asked : pool.value(0)) : *found;
    }
    if (!chosen)
        return withoutTopic(request);
    NoteValues values = conceptValues(*chosen, reading);
    if (asked && chosen != asked) {
        values[u"aclaración"_s]
            = {u"De %1 tengo un solo caso y ya lo viste: va uno de %2, de la "
               "misma materia."_s.arg(inBold(asked->title), inBold(chosen->title))};
    }
    return {fillForm(m_notes.form(u"caso"_s), values), chosen->title};
}

Answer AnswerComposer::example(const Request &request) const
{
    const StudyConcept *known = request.concepts.value(0);
    if (known && wasShown(known->values.value(u"caso"_s).value(0), request.context)) {
        const QString clinic = known->values.value(u"clínica"_s).value(0);
        if (!wasShown(clinic, request.context))
            return {{inBold(u"En la clínica:"_s) + u' ' + clinic}, known->title};
        Request another = request;
        another.reading.kind = QuestionKind::AnotherCase;
        return clinicalCase(another);
    }
    return clinicalCase(request);
}

Answer AnswerComposer::subjectAnswer(const Request &request) const
{
    const QString &subject = request.subject;
    if (subject.isEmpty())
        return withoutTopic(request);
    NoteValues values{{u"materia"_s, {subject}},
                      {u"temas"_s, {spanishList(titlesOf(m_notes.conceptsOf(subject)))}}};
    const bool asksForTopics = request.reading.words.contains(u"temas"_s)
        || request.reading.words.contains(u"contenidos"_s);
    if (asksForTopics)
        return {fillForm(m_notes.form(u"temas"_s), values), subject};
    if (!request.reading.topic.isEmpty())
        values[u"detalle"_s] = {request.reading.topic};
    return {fillForm(m_notes.form(subject), values), subject};
}

Answer AnswerComposer::simpler(const Request &request) const
{
    const StudyConcept *known = request.concepts.value(0);
    if (!known)
        return subjectAnswer(request);
    NoteValues values = conceptValues(*known, request.reading);
    // Other concepts that its steps name, said in a line each.
    const ConceptIndex &index = m_notes.index();
    const QString steps = known->values.value(u"paso"_s).join(u' ');
    for (const ConceptMention &mention : index.mentions(index.words(steps))) {
        const bool isNamed = values.value(u"término"_s).contains(mention.known->title);
        if (mention.known == known || isNamed || values.value(u"término"_s).size() == mostNearby)
            continue;
        values[u"término"_s] += mention.known->title;
        values[u"significado"_s] += mention.known->values.value(u"qué es"_s).value(0);
    }
    return {fillForm(m_notes.form(u"simple"_s), values), known->title};
}

Answer AnswerComposer::imageAnswer(const ChatQuestion &question) const
{
    const ImageFacts facts = imageFacts(question.image->bytes);
    const QString name = inlineText(question.image->name);
    const QString declaredType = inlineText(question.image->declaredType);

    NoteValues values;
    if (!question.message.startsWith(imagePrompt)) {
        const QString topic = topicText(question.message);
        if (!topic.isEmpty())
            values[u"consulta"_s] = {topic};
        if (const auto *known = m_notes.conceptIn(topic))
            values[u"qué es"_s] = known->values.value(u"qué es"_s);
    }
    values[u"nombre"_s] = {name.isEmpty() ? u"sin nombre"_s : name};
    values[u"bytes"_s] = {QString::number(facts.byteCount)};
    if (facts.format.isEmpty()) {
        values[u"irreconocible"_s] = {QString()};
    } else {
        const QString type = "image/"_L1 + facts.format.toLower();
        values[u"tipo"_s] = {u"%1 (%2)"_s.arg(facts.format, type)};
        if (!declaredType.isEmpty() && declaredType.compare(type, Qt::CaseInsensitive) != 0)
            values[u"declarado"_s] = {declaredType};
    }
    if (!facts.size.isEmpty()) {
        values[u"ancho"_s] = {QString::number(facts.size.width())};
        values[u"alto"_s] = {QString::number(facts.size.height())};
    }
    return {fillForm(m_notes.form(u"imagen"_s), values), {}};
}
