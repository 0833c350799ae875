#pragma once

#include <QString>

/// `text` in lower case and without accents, with every run of anything but letters and digits as
/// one blank, so that what people type meets what the notes say: "¿Qué es  la MITOSIS?" gives
/// "que es la mitosis".
QString foldedText(const QString &text);

/// Whether the words of `folded` hold the words of `needle`, both folded, in a row.
bool holdsWords(const QString &folded, const QString &needle);
