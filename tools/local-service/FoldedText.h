#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// A word of a text.
struct TextWord
{
    /// In lower case, without accents.
    QString folded;
    /// Where it stands in the text, `end` excluded.
    qsizetype start = 0;
    qsizetype end = 0;
};

/// `text` in lower case and without accents, with every run of anything but letters and digits as
/// one blank, so that what people type meets what the notes say: "¿Qué es  la MITOSIS?" gives
/// "que es la mitosis".
QString foldedText(const QString &text);

/// The words of `text`, in order.
QList<TextWord> textWords(const QString &text);

/// The folded words of `words`.
QStringList foldedWords(const QList<TextWord> &words);

/// Whether the words of `folded` hold the words of `needle`, both folded, in a row.
bool holdsWords(const QString &folded, const QString &needle);
