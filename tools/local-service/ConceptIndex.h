#pragma once

#include "FoldedText.h"
#include "NoteSection.h"
#include "StudyConcept.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// A name of a concept in a text.
struct ConceptMention
{
    const StudyConcept *known = nullptr;
    /// The name that was found, as the notes write it.
    QString name;
    /// Where, in words of the text.
    qsizetype firstWord = 0;
    qsizetype wordCount = 0;
    /// How many letters its topic words have: the longer, the more it says. A common name says
    /// nothing next to another.
    qsizetype length = 0;
};

/// A line of a concept's note.
struct NoteLine
{
    const StudyConcept *known = nullptr;
    QString key;
    qsizetype index = 0;
};

/// A line of the notes and how much of a question it speaks of.
struct LineMatch
{
    NoteLine line;
    /// From 0 to 1: the share of the question's words that the line holds, rare ones counting more.
    double share = 0;
    /// How many words they have in common.
    int wordCount = 0;
};

/// Finds the concepts that a text names, whatever its accents, plurals, small typing mistakes and
/// abbreviations, and the lines of their notes that speak of the same.
class ConceptIndex
{
public:
    /// How many characters of a text are read.
    static constexpr qsizetype longestRead = 2000;

    ConceptIndex() = default;
    /// `concepts` is borrowed and outlives this object. `abbreviations` has a section whose lines
    /// are "short form: words".
    ConceptIndex(const QList<StudyConcept> &concepts, const QList<NoteSection> &abbreviations);

    /// The words of the first `longestRead` characters of `text`, short forms written out.
    QList<TextWord> words(const QString &text) const;

    /// The names in `words`, from left to right; where names overlap, the longest.
    QList<ConceptMention> mentions(const QList<TextWord> &words) const;

    /// The lines of `known`, or of every concept where it is null, that have words in common with
    /// `words`, the best first. Common words and those of `known`'s own title do not count.
    QList<LineMatch> linesAbout(const QStringList &words, const StudyConcept *known) const;

    /// Whether the notes use a folded word, or another form of it.
    bool isKnownWord(const QString &folded) const;

    /// The stems of `words` that carry a topic.
    static QStringList topicStems(const QStringList &words);

private:
    // A word that carries a topic, ready to be compared.
    struct Term
    {
        QString folded;
        QString stem;
        QString sound;
    };
    struct Name
    {
        QString text;
        // Null for the name of something else.
        const StudyConcept *known = nullptr;
        QList<Term> terms;
        // Of all its terms, in letters.
        qsizetype length = 0;
        bool isCommon = false;
    };
    struct Line
    {
        NoteLine place;
        QSet<QString> stems;
    };
    struct Candidate
    {
        const Name *name = nullptr;
        qsizetype first = 0;
        qsizetype last = 0;
        int faults = 0;
    };

    void addName(const QString &text, const StudyConcept *known);
    void addLines(const StudyConcept &known);
    static Term termOf(const QString &folded);
    int faults(const Term &said, const Term &named) const;
    std::optional<Candidate> candidate(const Name &name, const QList<Term> &said,
                                       qsizetype first) const;
    double weight(const QString &stem) const;

    QHash<QString, QStringList> m_shortForms;
    QList<Name> m_names;
    QList<Line> m_lines;
    // Every stem that the notes use, and in how many concepts.
    QHash<QString, int> m_conceptCounts;
    qsizetype m_conceptCount = 0;
};
