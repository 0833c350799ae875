#pragma once

#include "Answer.h"
#include "ChatQuestion.h"
#include "ModelReply.h"
#include "ModelService.h"
#include "QuestionLimit.h"
#include "Refusal.h"
#include "UserContext.h"

#include <memory>
#include <variant>

class StudyNotes;

/// Whether a model looks at images.
enum class ImageSupport {
    None,
    Jpeg,
};

/// Has questions answered by a model. Safe to use from many threads.
class ModelAssistant
{
public:
    /// In characters: longer questions are answered with a request to shorten them.
    static constexpr qsizetype longestQuestion = 24'000;

    /// `notes` is borrowed and outlives this object. `mostPerMinute` is for all users together; see
    /// `QuestionLimit` for one of them.
    ModelAssistant(ModelService service, ImageSupport images, int mostPerMinute,
                   const StudyNotes &notes);

    /// The answer that the model begins to write, or one that needs no model, or why there is none.
    /// `firstLines` and `whenWhole` as in `ModelReply`.
    std::variant<std::unique_ptr<ModelReply>, Answer, Refusal>
    answer(const ChatQuestion &question, const UserContext &context, const QStringList &firstLines,
           ModelReply::WhenWhole whenWhole);

private:
    ModelService m_service;
    ImageSupport m_images;
    QuestionLimit m_limit;
    const StudyNotes &m_notes;
};
