#pragma once

#include "Answer.h"
#include "ChatQuestion.h"
#include "NoteForm.h"

#include <QString>
#include <QStringList>

class StudyNotes;

/// Writes the answer to a question from the study notes. The same question, with the same recent
/// subjects, always gets the same answer.
class AnswerComposer
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit AnswerComposer(const StudyNotes &notes);

    /// `recentSubjects` is what the same user asked about before, newest first. What the answer
    /// repeats of the question is one line, bounded, and holds no bold markers of its own.
    Answer answer(const ChatQuestion &question, const QStringList &recentSubjects) const;

private:
    Answer imageAnswer(const ChatQuestion &question, const QStringList &recentSubjects) const;
    Answer subjectAnswer(const QString &subject, const QString &aim,
                         const QStringList &recentSubjects) const;
    Answer comparison(const QString &topic, const QStringList &recentSubjects) const;
    Answer openAnswer(const QString &message, const QStringList &recentSubjects) const;
    Answer topicAnswer(const QString &form, const QString &topic,
                       const QStringList &recentSubjects) const;
    QString subjectOf(const QString &topic) const;
    NoteValues topicValues(const QString &topic, const QStringList &recentSubjects) const;

    const StudyNotes &m_notes;
};
