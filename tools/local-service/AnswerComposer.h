#pragma once

#include "Answer.h"
#include "ChatQuestion.h"
#include "EmergencyAnswers.h"
#include "NoteAspects.h"
#include "NoteForm.h"
#include "QuestionReading.h"
#include "UserContext.h"

#include <QString>
#include <QStringList>

class StudyNotes;

/// Writes the answer to a question from the study notes. The same question in the same context
/// always gets the same answer.
class AnswerComposer
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit AnswerComposer(const StudyNotes &notes);

    /// What the answer repeats of the question is one line, bounded, and holds no bold markers of
    /// its own. Its subject is what the notes call the concepts or the subject it is about, and
    /// empty when it is about none.
    Answer answer(const ChatQuestion &question, const UserContext &context) const;

private:
    using Concepts = QList<const StudyConcept *>;
    struct Request
    {
        QuestionReading reading;
        const UserContext &context;
        // What the reading names, or what it goes on with.
        Concepts concepts;
        QString subject;
    };

    Answer textAnswer(const ChatQuestion &question, const UserContext &context) const;
    Answer imageAnswer(const ChatQuestion &question) const;
    Answer socialAnswer(const QString &form, const UserContext &context) const;
    Answer withoutTopic(const Request &request) const;
    Answer unknown(const Request &request) const;
    Answer mentionsAnswer(const Request &request, const QList<LineMatch> &lines) const;
    std::optional<Answer> partsComparison(const Request &request) const;
    Answer conceptAnswer(const QString &form, const Request &request) const;
    Answer aspectAnswer(const StudyConcept &known, const QuestionReading &reading,
                        const QList<AspectLines> &answers) const;
    Answer comparison(const Request &request) const;
    Answer practice(const Request &request) const;
    Answer clinicalCase(const Request &request) const;
    Answer subjectAnswer(const Request &request) const;
    Answer simpler(const Request &request) const;
    Answer example(const Request &request) const;

    QList<LineMatch> linesAbout(const QuestionReading &reading) const;
    std::optional<Concepts> conceptsFor(const QuestionReading &reading,
                                        const UserContext &context) const;
    QString titleFor(const StudyConcept &known, const QuestionReading &reading) const;
    NoteValues conceptValues(const StudyConcept &known, const QuestionReading &reading) const;
    NoteValues serviceValues(const UserContext &context) const;
    QStringList otherTitles(const StudyConcept &known) const;

    const StudyNotes &m_notes;
    EmergencyAnswers m_emergencies;
    QuestionReader m_reader;
    NoteAspects m_aspects;
    // What is outside medicine.
    PhraseBook m_outside;
};
