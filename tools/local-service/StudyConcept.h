#pragma once

#include "NoteForm.h"

#include <QString>
#include <QStringList>

/// One thing the notes know well enough to explain, ask about and reason on.
struct StudyConcept
{
    QString title;
    /// Folded; the title and every other name it goes by.
    QStringList names;
    /// What its note says, by key, ready to fill a form with.
    NoteValues values;
};
