#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// The values for the names in a form. A name with several values makes its line repeat.
using NoteValues = QHash<QString, QStringList>;

/// The lines of `form` with every {name} replaced by its value:
/// - a line that names something without a value is left out;
/// - a line is repeated for as many values as its names have, and {n} counts from 1; a name with
///   one value gives it to every repetition;
/// - a heading below the title that is left with nothing under it is left out.
/// What comes in through a value is never looked at for names.
QStringList fillForm(const QStringList &form, const NoteValues &values);

/// Every name that `form` uses, {n} excepted.
QStringList formNames(const QStringList &form);
