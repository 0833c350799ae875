#include "AnswerComposer.h"

#include "FoldedText.h"
#include "ImageFacts.h"
#include "PlainSpanish.h"
#include "StudyNotes.h"

#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

static constexpr QStringView subjectPrompt = u"Quiero estudiar";
static constexpr QStringView comparisonPrompt = u"Compará estos conceptos:";
// What the program asks when an image is sent without text.
static constexpr QStringView imagePrompt = u"Analizá esta imagen con finalidad educativa médica.";
static constexpr qsizetype mostCompared = 4;
static constexpr qsizetype mostTerms = 5;
static constexpr qsizetype mostRecalled = 3;

// A prompt that students complete with a topic, and the note that answers it.
struct TopicPrompt
{
    QStringView start;
    QLatin1StringView form;
};

static constexpr std::array topicPrompts{
    TopicPrompt{u"Explicame paso a paso:", "explicar"_L1},
    TopicPrompt{u"Creá preguntas de autoevaluación sobre:", "practicar"_L1},
    TopicPrompt{u"Ayudame a razonar clínicamente sobre:", "razonar"_L1},
    TopicPrompt{u"Quiero trabajar con un caso clínico sobre:", "caso"_L1},
};

// What `message` says after `prompt`; nothing when it does not start with it.
static std::optional<QString> completion(const QString &message, QStringView prompt)
{
    if (!message.startsWith(prompt, Qt::CaseInsensitive))
        return std::nullopt;
    return topicText(message.sliced(prompt.size()));
}

AnswerComposer::AnswerComposer(const StudyNotes &notes)
    : m_notes(notes)
{ }

Answer AnswerComposer::answer(const ChatQuestion &question, const QStringList &recentSubjects) const
{
    if (question.image)
        return imageAnswer(question, recentSubjects);

    if (const auto aim = completion(question.message, subjectPrompt)) {
        const QString subject = StudyNotes::subjectIn(*aim);
        return subject.isEmpty() ? openAnswer(*aim, recentSubjects)
                                 : subjectAnswer(subject, *aim, recentSubjects);
    }
    if (const auto topic = completion(question.message, comparisonPrompt))
        return comparison(*topic, recentSubjects);
    for (const auto &[start, form] : topicPrompts) {
        if (const auto topic = completion(question.message, start))
            return topicAnswer(form, *topic, recentSubjects);
    }
    return openAnswer(question.message, recentSubjects);
}

Answer AnswerComposer::imageAnswer(const ChatQuestion &question,
                                   const QStringList &recentSubjects) const
{
    const ImageFacts facts = imageFacts(question.image->bytes);
    const QString name = inlineText(question.image->name);
    const QString declaredType = inlineText(question.image->declaredType);
    const bool hasOwnWords = !question.message.startsWith(imagePrompt);
    const QString topic = hasOwnWords ? topicText(question.message) : QString();

    NoteValues values = topicValues(topic, recentSubjects);
    if (!topic.isEmpty())
        values[u"consulta"_s] = {topic};
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

Answer AnswerComposer::subjectAnswer(const QString &subject, const QString &aim,
                                     const QStringList &recentSubjects) const
{
    NoteValues values = topicValues(subject, recentSubjects);
    // What the student adds after the subject's name, as in "Histología. El epitelio".
    const qsizetype nameEnd = aim.indexOf(subject, 0, Qt::CaseInsensitive) + subject.size();
    const QString detail = nameEnd < subject.size() ? QString() : topicText(aim.sliced(nameEnd));
    if (!detail.isEmpty()) {
        values[u"detalle"_s] = {detail};
        if (const auto *known = m_notes.conceptIn(detail))
            values.insert(known->values);
    }
    return {fillForm(m_notes.form(subject), values), subject};
}

Answer AnswerComposer::comparison(const QString &topic, const QStringList &recentSubjects) const
{
    if (topic.isEmpty())
        return topicAnswer(u"sin-tema"_s, topic, recentSubjects);

    static const QRegularExpression separator(
        u"\\s*[,;/]\\s*(?:y\\s+|e\\s+)?|\\s+(?:vs\\.?|versus|contra|y|e)\\s+"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QStringList topics = topic.split(separator, Qt::SkipEmptyParts).mid(0, mostCompared);

    NoteValues values = topicValues(topic, recentSubjects);
    values[u"concepto"_s] = topics;
    if (topics.size() < 2)
        values[u"falta otro"_s] = {QString()};

    Answer answer{fillForm(m_notes.form(u"comparar"_s), values), spanishList(topics)};
    for (const QString &compared : topics) {
        answer.lines += fillForm(m_notes.form(u"comparar-cada-uno"_s), topicValues(compared, {}));
    }
    answer.lines += fillForm(m_notes.form(u"comparar-cierre"_s), values);
    return answer;
}

Answer AnswerComposer::topicAnswer(const QString &form, const QString &topic,
                                   const QStringList &recentSubjects) const
{
    return {fillForm(m_notes.form(topic.isEmpty() ? u"sin-tema"_s : form),
                     topicValues(topic, recentSubjects)),
            subjectOf(topic)};
}

Answer AnswerComposer::openAnswer(const QString &message, const QStringList &recentSubjects) const
{
    const QString topic = topicText(message);
    if (m_notes.conceptIn(topic))
        return topicAnswer(u"concepto"_s, topic, recentSubjects);
    const QString subject = StudyNotes::subjectIn(topic);
    if (!subject.isEmpty())
        return subjectAnswer(subject, subject, recentSubjects);

    NoteValues values = topicValues(topic, recentSubjects);
    const QStringList terms = significantWords(topic).mid(0, mostTerms);
    if (terms.isEmpty())
        return {fillForm(m_notes.form(u"saludo"_s), values), {}};
    const QString pair = spanishList(terms.mid(0, 2));
    values[u"término"_s] = terms;
    if (terms.size() > 1)
        values[u"términos"_s] = {pair};
    return {fillForm(m_notes.form(u"general"_s), values), pair};
}

QString AnswerComposer::subjectOf(const QString &topic) const
{
    const auto *known = m_notes.conceptIn(topic);
    return known ? known->title : topic;
}

NoteValues AnswerComposer::topicValues(const QString &topic,
                                       const QStringList &recentSubjects) const
{
    NoteValues values;
    if (const auto *known = m_notes.conceptIn(topic)) {
        values = known->values;
        values[u"título"_s] = {known->title};
        values[u"pregunta inicial"_s] = known->values.value(u"pregunta"_s).mid(0, 1);
    } else {
        values[u"propio"_s] = {QString()};
    }
    values[u"tema"_s] = {topic};
    values[u"Tema"_s] = {capitalized(topic)};

    QStringList earlier = recentSubjects;
    earlier.removeAll(subjectOf(topic));
    QStringList recalled;
    for (const QString &subject : earlier.mid(0, mostRecalled))
        recalled += "**"_L1 + subject + "**"_L1;
    if (!recalled.isEmpty())
        values[u"anteriores"_s] = {spanishList(recalled)};
    return values;
}
