#pragma once

#include "Answer.h"
#include "ChatQuestion.h"
#include "EmergencyAnswers.h"
#include "IncomingRequest.h"
#include "ModelReply.h"
#include "Refusal.h"

#include <memory>
#include <mutex>
#include <optional>
#include <variant>

class AnswerComposer;
class ModelAssistant;
class StudyNotes;
class UserMemory;

/// What the service does with a request: checks it, has it answered by the notes or by a model, and
/// keeps in mind what it was about. Safe to use from many threads.
class ChatEndpoint
{
public:
    static constexpr qint64 largestBody = 20LL * 1024 * 1024;
    /// Larger than any question without an image.
    static constexpr qint64 largeBody = 64LL * 1024;

    /// An answer that is there, one that a model is writing, or why there is none.
    using Outcome = std::variant<Answer, std::unique_ptr<ModelReply>, Refusal>;

    /// Why nothing but a POST gets an answer.
    static Refusal wrongMethod();
    /// Why a body past `largestBody` gets no answer.
    static Refusal tooLarge();

    /// All are borrowed and outlive this object. Without `model` the notes answer.
    ChatEndpoint(const StudyNotes &notes, const AnswerComposer &composer, UserMemory &memory,
                 ModelAssistant *model = nullptr);

    /// The answer to `request`, or the first thing wrong with it: path (404), method (405), media
    /// type (415), size (413), room for it (503), content (400), too many questions for the model
    /// (429).
    Outcome respond(const IncomingRequest &request);

private:
    std::variant<ChatQuestion, Refusal> parse(const QByteArray &body);
    Outcome answer(const ChatQuestion &question);
    std::optional<Answer> urgentAnswer(const ChatQuestion &question) const;
    std::optional<Answer> memoryAnswer(const ChatQuestion &question);
    Answer notesAnswer(const ChatQuestion &question);
    Outcome modelAnswer(const ChatQuestion &question, const std::optional<QString> &care);
    QString subjectOf(const ChatQuestion &question) const;

    const StudyNotes &m_notes;
    const EmergencyAnswers m_emergencies;
    const AnswerComposer &m_composer;
    UserMemory &m_memory;
    ModelAssistant *m_model;
    // One large body is parsed at a time: while it is, it takes several times its size.
    std::mutex m_parsingLarge;
};
