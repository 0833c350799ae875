#pragma once

#include "NoteForm.h"

#include <QString>
#include <QStringList>

/// One thing the notes know well enough to explain, ask about and reason on.
struct StudyConcept
{
    QString title;
    /// The one of the six subjects that it belongs to.
    QString subject;
    /// The title and every other name it goes by, as written.
    QStringList names;
    /// Those of its names that are so common that they yield to any other name in a question.
    QStringList commonNames;
    /// Names that hold one of its own and mean something else.
    QStringList otherThings;
    /// What its note says, by key, ready to fill a form with.
    NoteValues values;
};
