#pragma once

#include "Answer.h"
#include "PhraseBook.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class ConceptIndex;
class StudyNotes;

/// Tells a message in which somebody needs help now from a question about the same subject, and
/// answers it: short, with the numbers to call, and no study material. When in doubt, somebody
/// needs help. The whole message is read, part by part, so that neither its length nor what was
/// pasted into it hides a cry for help. Made of notes/frases/urgencias.md; safe to use from many
/// threads.
class EmergencyAnswers
{
public:
    /// `notes` is borrowed and outlives this object.
    explicit EmergencyAnswers(const StudyNotes &notes);

    /// The answer to a message that is an emergency; it has no subject to remember.
    std::optional<Answer> answerTo(const QString &message) const;

    /// What goes before the answer to a message that says "me quiero morir" of an exam or of a
    /// topic: most mean nothing by it and still get their answer, some do.
    std::optional<QString> careLine(const QString &message) const;

    /// Whether a message pours out how hard the studies are: an exam that was failed, or "este
    /// parcial me mata".
    bool isOutpouring(const QString &message) const;

private:
    QString emergencyIn(const QStringList &said) const;
    bool anyPart(const QString &message,
                 const std::function<bool(const QStringList &words)> &holds) const;
    bool mayBeFigurative(const QStringList &words) const;

    const ConceptIndex &m_index;
    // By emergency, then its lines.
    QHash<QString, QStringList> m_answers;
    // What is an emergency, what is one where nothing sounds like study, and what tells these
    // apart.
    PhraseBook m_certain;
    PhraseBook m_likely;
    PhraseBook m_frames;
};
