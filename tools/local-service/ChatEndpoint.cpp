#include "ChatEndpoint.h"

#include "AnswerComposer.h"
#include "ChatQuestion.h"
#include "UserMemory.h"

#include <optional>

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

ChatEndpoint::ChatEndpoint(const AnswerComposer &composer, UserMemory &memory)
    : m_composer(composer)
    , m_memory(memory)
{ }

std::variant<Answer, Refusal> ChatEndpoint::respond(const IncomingRequest &request)
{
    if (auto refusal = checkEnvelope(request))
        return *refusal;

    const std::scoped_lock lock(m_parsing);
    const auto parsed = parseChatQuestion(request.body);
    if (const auto *refusal = std::get_if<Refusal>(&parsed))
        return *refusal;

    const auto &question = std::get<ChatQuestion>(parsed);
    Answer answer = m_composer.answer(question, {m_memory.subjects(question.userId), {}});
    m_memory.remember(question.userId, answer.subject);
    return answer;
}
