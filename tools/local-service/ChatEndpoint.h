#pragma once

#include "Answer.h"
#include "IncomingRequest.h"
#include "Refusal.h"

#include <mutex>
#include <variant>

class AnswerComposer;
class UserMemory;

/// What the service does with a request: checks it, composes the answer and keeps in mind what it
/// was about. Safe to use from many threads.
class ChatEndpoint
{
public:
    static constexpr qint64 largestBody = 20LL * 1024 * 1024;

    /// Why nothing but a POST gets an answer.
    static Refusal wrongMethod();
    /// Why a body past `largestBody` gets no answer.
    static Refusal tooLarge();

    /// Both are borrowed and outlive this object.
    ChatEndpoint(const AnswerComposer &composer, UserMemory &memory);

    /// The answer to `request`, or the first thing wrong with it: path (404), method (405), media
    /// type (415), size (413), content (400).
    std::variant<Answer, Refusal> respond(const IncomingRequest &request);

private:
    const AnswerComposer &m_composer;
    UserMemory &m_memory;
    // One body is parsed at a time: while it is, it takes several times its size.
    std::mutex m_parsing;
};
