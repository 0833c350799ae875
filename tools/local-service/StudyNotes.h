#pragma once

#include "ConceptIndex.h"
#include "NoteSection.h"
#include "StudyConcept.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// The study notes compiled into the service. They are text files under notes/, edited without
/// knowing this program; notes.md says how.
class StudyNotes
{
public:
    StudyNotes();
    Q_DISABLE_COPY_MOVE(StudyNotes)

    /// The six subjects, in the order students see them.
    static QStringList subjects();

    /// The subject whose name stands in `text`; empty when none does.
    static QString subjectIn(const QString &text);

    /// The lines of notes/`name`.md; for a subject `name` is its title.
    QStringList form(const QString &name) const;

    /// The sections of notes/frases/`name`.md.
    QList<NoteSection> phrases(const QString &name) const;

    const QList<StudyConcept> &concepts() const { return m_concepts; }
    QList<const StudyConcept *> conceptsOf(const QString &subject) const;
    const ConceptIndex &index() const { return m_index; }

    /// The concept whose name stands in `text`, the longest name if several do; null when none
    /// does.
    const StudyConcept *conceptIn(const QString &text) const;

private:
    QHash<QString, QStringList> m_forms;
    QHash<QString, QList<NoteSection>> m_phrases;
    QList<StudyConcept> m_concepts;
    ConceptIndex m_index;
};
