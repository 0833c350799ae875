#include "StudyNotes.h"

#include "FoldedText.h"

#include <QDir>
#include <QFile>

#include <algorithm>

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

// notes/ names files by what a subject is called, without accents or blanks.
static QString fileName(const QString &form)
{
    return foldedText(form).replace(u' ', u'-');
}

static QString subjectOfFile(const QString &name)
{
    for (const QString &subject : StudyNotes::subjects()) {
        if (name.startsWith(fileName(subject)))
            return subject;
    }
    qFatal("A file of concepts of no subject: %s", qUtf8Printable(name));
}

static StudyConcept conceptFrom(NoteSection section, const QString &subject)
{
    StudyConcept result;
    result.title = section.title;
    result.subject = subject;
    result.commonNames = section.values.take(u"alias común"_s);
    result.names
        = QStringList{section.title} + section.values.take(u"alias"_s) + result.commonNames;
    result.otherThings = section.values.take(u"no es"_s);
    result.values = std::move(section.values);
    return result;
}

StudyNotes::StudyNotes()
{
    const QDir notes(u":/notes"_s);
    for (const QString &name : notes.entryList(QDir::Files))
        m_forms.insert(name.chopped(3), fileLines(notes.filePath(name)));
    const QDir phrases(notes.filePath(u"frases"_s));
    for (const QString &name : phrases.entryList(QDir::Files)) {
        m_phrases.insert(name.chopped(3), parseNoteSections(fileLines(phrases.filePath(name))));
    }
    const QDir concepts(notes.filePath(u"conceptos"_s));
    for (const QString &name : concepts.entryList(QDir::Files)) {
        for (const NoteSection &section : parseNoteSections(fileLines(concepts.filePath(name))))
            m_concepts += conceptFrom(section, subjectOfFile(name));
    }
    m_index = ConceptIndex(m_concepts, m_phrases.value(u"siglas"_s));
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

QList<NoteSection> StudyNotes::phrases(const QString &name) const
{
    return m_phrases.value(name);
}

QList<const StudyConcept *> StudyNotes::conceptsOf(const QString &subject) const
{
    QList<const StudyConcept *> found;
    for (const StudyConcept &known : m_concepts) {
        if (known.subject == subject)
            found += &known;
    }
    return found;
}

const StudyConcept *StudyNotes::conceptIn(const QString &text) const
{
    const auto mentions = m_index.mentions(m_index.words(text));
    const auto longest = std::max_element(
        mentions.begin(), mentions.end(),
        [](const ConceptMention &a, const ConceptMention &b) { return a.length < b.length; });
    return longest == mentions.end() ? nullptr : longest->known;
}
