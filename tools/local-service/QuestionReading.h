#pragma once

#include "ConceptIndex.h"
#include "PhraseBook.h"

#include <QList>
#include <QString>
#include <QStringList>

class StudyNotes;

/// What a message asks for.
enum class QuestionKind {
    /// What something is, or one side of it; also any question that asks for nothing else.
    Concept,
    Explanation,
    Summary,
    Comparison,
    Practice,
    ClinicalCase,
    Reasoning,
    /// How to study one of the six subjects, or what is known of it.
    Subject,
    // What only makes sense after another answer.
    Point,
    Solutions,
    Shorter,
    Simpler,
    Continuation,
    Example,
    MorePractice,
    AnotherCase,
    // What needs no notes.
    Greeting,
    Thanks,
    Farewell,
    Help,
    Acknowledgement
};

/// A message as the notes can answer it.
struct QuestionReading
{
    QuestionKind kind = QuestionKind::Concept;
    /// The concepts it names, in order, each once.
    QList<const StudyConcept *> concepts;
    /// The one among them that it is mostly about; null when none.
    const StudyConcept *main = nullptr;
    /// The names it used for them, as the notes write them.
    QStringList names;
    /// Whether these are too common to tell by themselves what it is about.
    bool hasOnlyCommonNames = false;
    /// The one of the six subjects that it names; empty when none.
    QString subject;
    /// The sides of a concept that it asks for, sections of notes/frases/aspectos.md, in the order
    /// in which it names them.
    QStringList aspects;
    /// Whether it asks for more than to be told what something is.
    bool asksToExplain = false;
    /// "5" in "haceme 5 preguntas" and 3 in "el punto 3", -1 for the last one; 0 when none is said.
    int number = 0;
    /// Its folded words.
    QStringList words;
    /// Those that carry a topic and are no part of a name, of the request or of the aspect.
    QStringList remainder;
    /// What it is about besides the names, as written; empty when nothing is left of it or it is
    /// too long to repeat.
    QString topic;
    /// What it sets side by side, as written: "el pulmón derecho" and "el izquierdo".
    QStringList sides;
};

/// Understands the ordinary ways to ask for something, by the phrases of notes/frases. Safe to use
/// from many threads.
class QuestionReader
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit QuestionReader(const StudyNotes &notes);

    QuestionReading read(const QString &message) const;

private:
    const ConceptIndex &m_index;
    PhraseBook m_requests;
    PhraseBook m_aspects;
};
