#include "StudyNotes.h"

#include "FoldedText.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

static QStringList fileLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Missing note: %s", qUtf8Printable(path));
    QStringList lines;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (!line.isEmpty())
            lines += line;
    }
    return lines;
}

static QList<StudyConcept> parseConcepts(const QStringList &lines)
{
    QList<StudyConcept> concepts;
    for (const QString &line : lines) {
        if (line.startsWith("# "_L1)) {
            const QString title = line.sliced(2);
            concepts += StudyConcept{title, {foldedText(title)}, {}};
            continue;
        }
        const qsizetype colon = line.indexOf(u':');
        if (colon < 0 || concepts.isEmpty())
            qFatal("Not a note's line: %s", qUtf8Printable(line));
        const QString key = line.first(colon).trimmed();
        const QString value = line.sliced(colon + 1).trimmed();
        if (key == "alias"_L1)
            concepts.last().names += foldedText(value);
        else
            concepts.last().values[key] += value;
    }
    return concepts;
}

// notes/ names files by what a subject is called, without accents or blanks.
static QString fileName(const QString &form)
{
    return foldedText(form).replace(u' ', u'-');
}

StudyNotes::StudyNotes()
{
    const QDir notes(u":/notes"_s);
    for (const QString &name : notes.entryList(QDir::Files))
        m_forms.insert(name.chopped(3), fileLines(notes.filePath(name)));
    const QDir concepts(notes.filePath(u"conceptos"_s));
    for (const QString &name : concepts.entryList(QDir::Files))
        m_concepts += parseConcepts(fileLines(concepts.filePath(name)));
}

QStringList StudyNotes::subjects()
{
    return {u"Biología Celular"_s, u"Histología"_s, u"Embriología"_s,
            u"Genética"_s,         u"Anatomía"_s,   u"Medicina Interna"_s};
}

QString StudyNotes::subjectIn(const QString &text)
{
    const QString folded = foldedText(text);
    for (const QString &subject : subjects()) {
        if (holdsWords(folded, foldedText(subject)))
            return subject;
    }
    return {};
}

QStringList StudyNotes::form(const QString &name) const
{
    return m_forms.value(fileName(name));
}

const StudyConcept *StudyNotes::conceptIn(const QString &text) const
{
    const QString folded = foldedText(text);
    const StudyConcept *best = nullptr;
    qsizetype bestLength = 0;
    for (const StudyConcept &candidate : m_concepts) {
        for (const QString &name : candidate.names) {
            if (name.size() > bestLength && holdsWords(folded, name)) {
                best = &candidate;
                bestLength = name.size();
            }
        }
    }
    return best;
}
