#pragma once

#include "Answer.h"
#include "QuestionReading.h"
#include "StudyConcept.h"
#include "UserContext.h"

#include <QList>

class StudyNotes;

/// Answers what only makes sense after another answer: one of its points again, what comes next,
/// its solutions.
class FollowUpAnswers
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit FollowUpAnswers(const StudyNotes &notes);

    /// The point of the last answer that `reading` names, with what comes before and after it and
    /// what it takes for granted. `known` is what that answer was about, null when nothing the
    /// notes have.
    Answer point(const QuestionReading &reading, const UserContext &context,
                 const StudyConcept *known) const;

    /// The solutions to the questions that were asked last.
    Answer solutions(const UserContext &context) const;

    /// The first part of the note of `known` that no answer of the conversation has shown.
    Answer continuation(const StudyConcept &known, const UserContext &context) const;

private:
    const StudyNotes &m_notes;
};

/// Whether an answer of the conversation shows `text`.
bool wasShown(const QString &text, const UserContext &context);
