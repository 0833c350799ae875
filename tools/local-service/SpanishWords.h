#pragma once

#include <QString>
#include <QStringList>

/// What a folded word shares with its plural and its other gender: "células" and "célula" give the
/// same, so do "agudo" and "aguda".
QString wordStem(const QString &folded);

/// How a stem sounds, so that "selula" meets "célula" and "emoglovina" meets "hemoglobina".
QString wordSound(const QString &stem);

/// Whether one folded word is likely the other one, mistyped: an edit or a swap of neighbours in
/// words of six letters or more, two in words of ten or more. Words that the field tells apart by
/// their beginning or end (hiper and hipo, itis and osis) are never each other.
bool isLikelyTypo(const QString &a, const QString &b);

/// A folded word and its sound, so that who compares one with many makes each sound once.
struct HeardWord
{
    // Not explicit: it is the word.
    HeardWord(const QString &folded); // NOLINT(google-explicit-constructor)

    QString word;
    QString sound;
};

/// Whether the folded word `said` sounds like `meant` or lacks, repeats or swaps one of its
/// letters: what a hurried hand does to a word of five letters or more.
bool isSlipOf(const HeardWord &said, const HeardWord &meant);

/// Whether a folded word carries no topic: articles, prepositions, pronouns, the verbs and nouns of
/// asking.
bool isCommonWord(const QString &folded);

/// Whether a folded word is a function word of English that Spanish does not have.
bool isEnglishWord(const QString &folded);

/// The number that a folded word says, in digits or in words up to "veinte" or "décimo"; 0 when it
/// says none.
int spokenNumber(const QString &folded);
