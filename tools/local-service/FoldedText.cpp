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

QList<TextWord> textWords(const QString &text)
{
    QList<TextWord> words;
    const auto isPart = [](QChar c) { return c.isLetterOrNumber() || c.isMark(); };
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && isPart(text[end]))
            ++end;
        if (end > start) {
            const QString folded = foldedText(text.sliced(start, end - start)).remove(u' ');
            if (!folded.isEmpty())
                words += TextWord{folded, start, end};
        }
        start = end + 1;
    }
    return words;
}

QStringList foldedWords(const QList<TextWord> &words)
{
    QStringList folded;
    folded.reserve(words.size());
    for (const TextWord &word : words)
        folded += word.folded;
    return folded;
}

bool holdsWords(const QString &folded, const QString &needle)
{
    return (u' ' + folded + u' ').contains(u' ' + needle + u' ');
}
