#include "FoldedText.h"

QString foldedText(const QString &text)
{
    QString folded;
    for (const QChar c : text.normalized(QString::NormalizationForm_KD).toLower()) {
        if (c.isMark())
            continue;
        folded += c.isLetterOrNumber() ? c : QChar(u' ');
    }
    return folded.simplified();
}

bool holdsWords(const QString &folded, const QString &needle)
{
    return (u' ' + folded + u' ').contains(u' ' + needle + u' ');
}
