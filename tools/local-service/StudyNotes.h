#pragma once

#include "StudyConcept.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// The study notes compiled into the service. They are text files under notes/, edited without
/// knowing this program:
/// - notes/NAME.md is a form (see `fillForm`), a page of one of the subjects among them;
/// - notes/conceptos/ANY.md holds concepts: "# Title", then "key: value" lines. A key may repeat;
///   "alias" gives other names that people use.
/// Blank lines are for the reader of the file only.
class StudyNotes
{
public:
    StudyNotes();

    /// The six subjects, in the order students see them.
    static QStringList subjects();

    /// The subject whose name stands in `text`; empty when none does.
    static QString subjectIn(const QString &text);

    /// The lines of notes/`name`.md; for a subject `name` is its title.
    QStringList form(const QString &name) const;

    const QList<StudyConcept> &concepts() const { return m_concepts; }

    /// The concept whose name stands in `text`, the longest name if several do; null when none
    /// does.
    const StudyConcept *conceptIn(const QString &text) const;

private:
    QHash<QString, QStringList> m_forms;
    QList<StudyConcept> m_concepts;
};
