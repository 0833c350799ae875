#pragma once

#include "PhraseBook.h"
#include "QuestionReading.h"
#include "StudyConcept.h"

#include <QHash>
#include <QStringList>

class StudyNotes;

/// Finds the lines of a concept's note that answer a question about one side of it: its causes, its
/// signs, what it is for. Made of notes/frases/aspectos.md.
class NoteAspects
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit NoteAspects(const StudyNotes &notes);

    /// The facts of `known` that answer `reading` best, the best first; none where the question is
    /// about the whole of it. No steps, which are told whole and in their order, and no
    /// resolution without its case.
    QStringList linesFor(const QuestionReading &reading, const StudyConcept &known) const;

    /// What those facts stand under: the aspect where they are told by it, else that they share the
    /// words of the question.
    QString heading(const QuestionReading &reading) const;

    /// A line as an answer: a practice question is given with its own.
    static QString lineText(const NoteLine &line);

    /// The lines of `known` that hold every one of `stems`.
    static QStringList linesWith(const QStringList &stems, const StudyConcept &known);

private:
    const ConceptIndex &m_index;
    QHash<QString, NoteValues> m_aspects;
    PhraseBook m_signs;
};
