#pragma once

#include "PhraseBook.h"
#include "QuestionReading.h"
#include "StudyConcept.h"

#include <QList>
#include <QStringList>

class StudyNotes;

/// What a note says of one side of its concept.
struct AspectLines
{
    QString heading;
    QStringList lines;
    /// Whether the lines are steps, told whole and in their order.
    bool isSequence = false;
};

/// Finds the lines of a concept's note that answer a question about one side of it: its causes, its
/// signs, what it is for. Made of notes/frases/aspectos.md.
class NoteAspects
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit NoteAspects(const StudyNotes &notes);

    /// What `known` says of each side that `reading` asks for, in the order asked, the lines that
    /// share its other words first. Only sides that the note has lines of its own for.
    QList<AspectLines> answersTo(const QuestionReading &reading, const StudyConcept &known) const;

    /// The facts of `known` that answer `reading` best, the best first; none where the question is
    /// about the whole of it. No steps, which are told whole and in their order, and no
    /// resolution without its case.
    QStringList linesFor(const QuestionReading &reading, const StudyConcept &known) const;

    /// What those facts stand under: the aspect where they are told by it, else that they share the
    /// words of the question.
    QString heading(const QuestionReading &reading) const;

    /// The sides that `known` has lines for, those in `told` excepted, as a sentence names them.
    QStringList others(const StudyConcept &known, const QList<AspectLines> &told) const;

    /// Whether a line under `key` answers `reading` for whatever it names, though the note is of
    /// something else: which nerve goes to a muscle is in the note of the nerve.
    bool tellsOfOthers(const QString &key, const QuestionReading &reading) const;

    /// Whether `name` stands for a part of `known` rather than for the whole of it.
    bool isPart(const QString &name, const StudyConcept &known) const;

    /// A line as an answer: a practice question is given with its own.
    static QString lineText(const NoteLine &line);

    /// The lines of `known` that hold every one of `stems`.
    static QStringList linesWith(const QStringList &stems, const StudyConcept &known);

private:
    QStringList partsIn(const QuestionReading &reading, const StudyConcept &known) const;
    QStringList matchingLines(const QuestionReading &reading, const StudyConcept &known) const;
    QStringList linesOn(const QString &aspect, const QuestionReading &reading,
                        const StudyConcept &known) const;
    QStringList linesOnParts(const QuestionReading &reading, const StudyConcept &known) const;
    const NoteSection *section(const QString &aspect) const;

    const ConceptIndex &m_index;
    const QList<NoteSection> m_aspects;
};
