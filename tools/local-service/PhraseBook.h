#pragma once

#include "NoteSection.h"
#include "SpanishWords.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Where a phrase was found, in words.
struct PhraseMatch
{
    QString section;
    qsizetype firstWord = 0;
    qsizetype wordCount = 0;
};

/// Ways to say things, by what they mean: sections of "key: phrase" lines. Case and accents do not
/// count in a phrase, and
/// - (a|b) is one of several; (a|b)? may be missing;
/// - word* is any word that begins so, * any one word, ... up to five words or none;
/// - {name} stands for what the section "listas" gives as "name: a|b";
/// - ^ is the beginning of what is said and $ its end; (a|$) is one word or the end.
class PhraseBook
{
public:
    /// Takes the phrases of the lines with `key`. Ends the program on one that is malformed: the
    /// files are compiled in.
    PhraseBook(const QList<NoteSection> &sections, const QString &key);

    /// The sections with a phrase that stands in `words`, in the order of the file.
    QList<PhraseMatch> matches(const QStringList &words) const;

    /// Where `section` has a phrase in `words`.
    std::optional<PhraseMatch> match(const QString &section, const QStringList &words) const;

    /// Whether `word` is one that the phrases are made of.
    bool isPhraseWord(const QString &word) const;

    /// `words` with those that nobody writes on purpose as the words of phrases that they slipped
    /// from. `isWord` tells what is a word of its own.
    QStringList corrected(QStringList words,
                          const std::function<bool(const QString &)> &isWord) const;

    /// Whether `section` has a phrase in `words`.
    bool holds(const QString &section, const QStringList &words) const;

private:
    void addWords(const QString &expression);

    struct Phrases
    {
        QString section;
        QRegularExpression any;
    };

    QList<Phrases> m_phrases;
    QSet<QString> m_words;
    // The same by the first letter of their sound, in order, so that a slip is always taken for the
    // same word.
    QHash<QChar, QList<HeardWord>> m_wordsBySound;
    // What words that are given by their beginning begin with.
    QStringList m_beginnings;
};
