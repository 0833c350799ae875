#include "ChatEndpoint.h"

#include "AnswerComposer.h"
#include "MemoryRequest.h"
#include "ModelAssistant.h"
#include "StudyNotes.h"
#include "UserMemory.h"

#include <utility>

using namespace Qt::StringLiterals;

// A media type without its parameters.
static QString essence(const QString &contentType)
{
    return contentType.section(u';', 0, 0).trimmed().toLower();
}

static std::optional<Refusal> checkEnvelope(const IncomingRequest &request)
{
    if (request.path != "/api/chat"_L1)
        return Refusal{404, u"Esa dirección no existe. Las preguntas van a /api/chat."_s};
    if (request.method != "POST"_L1)
        return ChatEndpoint::wrongMethod();
    if (essence(request.contentType) != "application/json"_L1)
        return Refusal{415, u"El cuerpo debe ser de tipo application/json."_s};
    if (!request.contentEncoding.isEmpty())
        return Refusal{415, u"No se admiten cuerpos comprimidos."_s};
    if (request.bodyState == BodyState::TooLarge)
        return ChatEndpoint::tooLarge();
    if (request.bodyState == BodyState::NoRoom) {
        return Refusal{503,
                       u"Hay demasiadas imágenes en camino a la vez. Esperá un momento y volvé a "
                       "preguntar."_s};
    }
    if (request.bodyState == BodyState::Broken)
        return Refusal{400, u"El cuerpo llegó incompleto o mal formado."_s};
    return std::nullopt;
}

Refusal ChatEndpoint::wrongMethod()
{
    return {405, u"Ese método no se admite. Las preguntas van con POST."_s};
}

Refusal ChatEndpoint::tooLarge()
{
    return {413, u"La consulta pasa los 20 MiB."_s};
}

ChatEndpoint::ChatEndpoint(const StudyNotes &notes, const AnswerComposer &composer,
                           UserMemory &memory, ModelAssistant *model)
    : m_notes(notes)
    , m_emergencies(notes)
    , m_composer(composer)
    , m_memory(memory)
    , m_model(model)
{ }

ChatEndpoint::Outcome ChatEndpoint::respond(const IncomingRequest &request)
{
    if (auto refusal = checkEnvelope(request))
        return *refusal;
    const auto parsed = parse(request.body);
    if (const auto *refusal = std::get_if<Refusal>(&parsed))
        return *refusal;
    return answer(std::get<ChatQuestion>(parsed));
}

std::variant<ChatQuestion, Refusal> ChatEndpoint::parse(const QByteArray &body)
{
    // Questions without an image never wait for each other.
    std::unique_lock lock(m_parsingLarge, std::defer_lock);
    if (body.size() > largeBody)
        lock.lock();
    return parseChatQuestion(body);
}

ChatEndpoint::Outcome ChatEndpoint::answer(const ChatQuestion &question)
{
    if (auto urgent = urgentAnswer(question))
        return *std::move(urgent);
    const auto care = m_emergencies.careLine(question.message);
    if (auto aboutMemory = memoryAnswer(question)) {
        if (care)
            aboutMemory->lines.prepend(*care);
        return *std::move(aboutMemory);
    }
    if (m_model)
        return modelAnswer(question, care);
    return notesAnswer(question);
}

// What comes before anything else, with and without a model: whoever tells of an emergency gets no
// study material.
std::optional<Answer> ChatEndpoint::urgentAnswer(const ChatQuestion &question) const
{
    return m_emergencies.answerTo(question.message);
}

std::optional<Answer> ChatEndpoint::memoryAnswer(const ChatQuestion &question)
{
    const auto request = question.image ? std::nullopt : memoryRequest(question.message);
    if (!request)
        return std::nullopt;
    switch (*request) {
    case MemoryRequest::Forget:
        return Answer{forgottenAnswer(m_memory.forget(question.userId)), {}};
    case MemoryRequest::Recall:
        return Answer{recalledAnswer(m_memory.context(question.userId)), {}};
    }
    Q_UNREACHABLE();
}

Answer ChatEndpoint::notesAnswer(const ChatQuestion &question)
{
    const UserContext context = m_memory.context(question.userId);
    Answer answer = m_composer.answer(question, context);
    m_memory.remember(question.userId,
                      {{question.message, answer.lines.join(u'\n')}, answer.subject, {}});
    return answer;
}

// `care` comes before whatever the model says, and where the model says nothing.
ChatEndpoint::Outcome ChatEndpoint::modelAnswer(const ChatQuestion &question,
                                                const std::optional<QString> &care)
{
    // What is remembered is written before the reader learns that the answer is whole.
    const auto remember = [this, message = question.message, userId = question.userId,
                           subject = subjectOf(question)](const ModelReply::Outcome &outcome) {
        m_memory.remember(userId, {{message, outcome.text}, subject, outcome.toReview});
    };
    const QStringList firstLines = care ? QStringList{*care} : QStringList();
    auto outcome
        = m_model->answer(question, m_memory.context(question.userId), firstLines, remember);
    if (auto *answer = std::get_if<Answer>(&outcome)) {
        answer->lines = firstLines + answer->lines;
        return *std::move(answer);
    }
    if (const auto *refusal = std::get_if<Refusal>(&outcome)) {
        return care ? Outcome(Answer{{*care, refusal->reason}, {}}) : Outcome(*refusal);
    }
    return std::get<std::unique_ptr<ModelReply>>(std::move(outcome));
}

// What the notes know the question to be about.
QString ChatEndpoint::subjectOf(const ChatQuestion &question) const
{
    const auto *known = m_notes.conceptIn(question.message);
    return known ? known->title : StudyNotes::subjectIn(question.message);
}
