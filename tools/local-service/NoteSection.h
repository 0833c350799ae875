#pragma once

#include "NoteForm.h"

#include <QList>
#include <QString>
#include <QStringList>

/// A part of a notes file: "# Title", then "key: value" lines.
struct NoteSection
{
    QString title;
    /// By key, in the order of the file; a key may repeat.
    NoteValues values;
};

/// The sections of a file's lines. Blank lines and those that start with ">" are for the reader of
/// the file. Ends the program on a line that is none of these: the files are compiled in.
QList<NoteSection> parseNoteSections(const QStringList &lines);
