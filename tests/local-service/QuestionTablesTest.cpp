#include "AnswerComposer.h"
#include "EmergencyAnswers.h"
#include "FoldedText.h"
#include "StudyNotes.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

// The rows of a table without its header, by column.
static QList<QStringList> tableRows(const QString &name)
{
    QFile file(QStringLiteral(QUESTIONS_FOLDER) + u'/' + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Missing table: %s", qUtf8Printable(file.fileName()));
    QList<QStringList> rows;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts))
        rows += line.split(u'\t');
    return rows.mid(1);
}

// The kind of an answer to a study question, told from what it shows.
static QString kindOf(const Answer &answer)
{
    const QString title = answer.lines.value(0);
    if (title.startsWith(u"# Caso clínico"_s))
        return u"caso"_s;
    if (title.startsWith("# Preguntas"_L1))
        return u"practicar"_s;
    if (title.startsWith("# Razonamiento"_L1))
        return u"razonar"_s;
    if (title.endsWith(", paso a paso"_L1))
        return u"explicar"_s;
    if (title.endsWith(": lo esencial"_L1))
        return u"resumen"_s;
    if (title.startsWith(u"# Comparación"_s))
        return u"comparar"_s;
    if (title.startsWith("# Temas de"_L1) || !StudyNotes::subjectIn(title).isEmpty())
        return u"materia"_s;
    return title.startsWith("# "_L1) ? u"concepto"_s : u"otra cosa"_s;
}

// Says how many rows of a table were answered right, and which were not.
class Score
{
public:
    void add(bool isRight, const QString &miss)
    {
        ++m_count;
        m_right += isRight ? 1 : 0;
        if (!isRight)
            m_misses += miss;
    }
    double rate() const { return m_count == 0 ? 0 : static_cast<double>(m_right) / m_count; }
    void print(const char *what) const
    {
        qInfo("%s: %d of %d (%.1f %%)", what, m_right, m_count, 100 * rate());
        for (const QString &miss : m_misses)
            qInfo("  missed: %s", qUtf8Printable(miss));
    }

private:
    int m_count = 0;
    int m_right = 0;
    QStringList m_misses;
};

class QuestionTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersNaturalQuestions()
    {
        Score score;
        const auto rows = tableRows(u"preguntas.tsv"_s);
        QCOMPARE(rows.size(), 120);
        for (const QStringList &row : rows) {
            const Answer answer = m_composer.answer({row[3], u"u"_s, {}}, {});
            const bool isRight = kindOf(answer) == row[2] && isAbout(answer, row[1], row[0]);
            score.add(isRight,
                      u"%1 [%2: %3] got %4, %5"_s.arg(row[3], row[2], row[1], kindOf(answer),
                                                      answer.subject));
        }
        score.print("questions");
        QVERIFY(score.rate() >= 0.9);
    }

    void answersShortQuestions()
    {
        Score score;
        const auto rows = tableRows(u"preguntas-cortas.tsv"_s);
        QCOMPARE(rows.size(), 120);
        for (const QStringList &row : rows) {
            const Answer answer = m_composer.answer({row[3], u"u"_s, {}}, {});
            score.add(isOfKind(answer, row[2]) && isAbout(answer, row[1], row[0]),
                      u"%1 [%2: %3] got %4, %5, %6"_s.arg(row[3], row[2], row[1], kindOf(answer),
                                                          answer.subject, answer.lines.value(1)));
        }
        score.print("short questions");
        QVERIFY(score.rate() >= 0.9);
    }

    void tellsEmergenciesFromStudy()
    {
        Score emergencies;
        Score study;
        const auto rows = tableRows(u"urgencias.tsv"_s) + tableRows(u"urgencias-habladas.tsv"_s)
            + tableRows(u"urgencias-tipeadas.tsv"_s);
        for (const QStringList &row : rows) {
            const bool isRecognised = m_emergencies.answerTo(row[2]).has_value();
            if (row[0] == u"sí"_s)
                emergencies.add(isRecognised, row[1] + u": "_s + row[2]);
            else
                study.add(!isRecognised, row[1] + u": "_s + row[2]);
        }
        emergencies.print("emergencies recognised");
        study.print("study questions left alone");
        QCOMPARE(emergencies.rate(), 1.0);
        QCOMPARE(study.rate(), 1.0);
    }

    void keepsUpWithAConversation()
    {
        Score score;
        const auto rows = tableRows(u"conversacion.tsv"_s) + tableRows(u"seguidas.tsv"_s);
        for (const QStringList &row : rows) {
            UserContext context;
            Answer before;
            if (!row[0].isEmpty()) {
                before = m_composer.answer({row[0], u"u"_s, {}}, {});
                context.turns += ChatTurn{row[0], before.lines.join(u'\n')};
                context.subjects += before.subject;
            }
            const Answer answer = m_composer.answer({row[2], u"u"_s, {}}, context);
            score.add(keepsUp(row[1], answer, before),
                      row[1] + u": "_s + row[2] + u" → "_s + answer.lines.value(0));
        }
        score.print("turns of a conversation");
        QVERIFY(score.rate() >= 0.9);
    }

private:
    // Whether `answer` is about every one of `concepts`, or about `subject` where there are none.
    bool isAbout(const Answer &answer, const QString &concepts, const QString &subject) const
    {
        if (concepts.isEmpty())
            return answer.subject == subject;
        const ConceptIndex &index = m_notes.index();
        const QString text = foldedText(answer.lines.join(u' '));
        for (const QString &title : concepts.split(u" | "_s)) {
            const auto *known = m_notes.conceptIn(title);
            if (known) {
                const auto mentions = index.mentions(index.words(answer.subject));
                const bool isThere
                    = std::any_of(mentions.begin(), mentions.end(),
                                  [&](const auto &mention) { return mention.known == known; });
                if (!isThere)
                    return false;
                continue;
            }
            // Filed under a wider topic: its words have to be there.
            const QStringList said = ConceptIndex::topicStems(text.split(u' '));
            for (const QString &stem : ConceptIndex::topicStems(foldedWords(textWords(title)))) {
                if (answer.subject.isEmpty() || !said.contains(stem))
                    return false;
            }
        }
        return true;
    }

    // Whether `answer` is of `kind`; of one side of a concept, whether that side comes first.
    bool isOfKind(const Answer &answer, const QString &kind) const
    {
        if (!kind.startsWith(u"aspecto: "_s))
            return kindOf(answer) == kind;
        const QString key = kind.section(u": "_s, 1);
        for (const NoteSection &section : m_notes.phrases(u"aspectos"_s)) {
            if (section.values[u"clave"_s].contains(key)
                && answer.lines.indexOf("## "_L1 + section.title) == firstHeading(answer))
                return true;
        }
        return false;
    }

    static qsizetype firstHeading(const Answer &answer)
    {
        return answer.lines.indexOf(QRegularExpression(u"^## .*"_s));
    }

    bool keepsUp(const QString &kind, const Answer &answer, const Answer &before) const
    {
        const QString text = answer.lines.join(u'\n');
        const auto isOfTheSame
            = [&] { return answer.subject == before.subject && !answer.subject.isEmpty(); };
        if (kind.startsWith("aspecto: "_L1))
            return isOfTheSame() && isOfKind(answer, kind);
        if (kind == "practicar"_L1 || kind == "caso"_L1)
            return isOfTheSame() && kindOf(answer) == kind;
        if (kind == "comparar"_L1)
            return answer.subject.startsWith(before.subject) && kindOf(answer) == kind;
        if (kind == "ejemplo"_L1)
            return isOfTheSame() && kindOf(answer) == "caso"_L1;
        if (kind == "simple"_L1)
            return isOfTheSame() && text.contains(u"de otra manera"_s);
        if (kind == "soluciones"_L1)
            return text.startsWith("## Respuestas"_L1);
        if (kind == "corto"_L1)
            return isOfTheSame() && answer.lines.size() < before.lines.size();
        if (kind == "saludo"_L1)
            return text.startsWith(u"¡Hola!"_s) && answer.lines.size() <= 3;
        if (kind == "gracias"_L1)
            return text.startsWith(u"¡De nada!"_s) && answer.lines.size() == 1;
        if (kind == "punto"_L1)
            return text.startsWith("**El punto"_L1);
        if (kind == u"más corto"_s)
            return answer.subject == before.subject && answer.lines.size() < before.lines.size();
        if (kind == "seguir"_L1) {
            // It says something about the same that was not said before.
            return answer.subject == before.subject && !answer.subject.isEmpty()
                && std::any_of(answer.lines.begin(), answer.lines.end(), [&](const QString &line) {
                       return line.size() > 40 && !before.lines.contains(line);
                   });
        }
        return kind == "fuera"_L1 && answer.lines.size() <= 4
            && text.contains("no tengo una nota"_L1);
    }

    StudyNotes m_notes;
    AnswerComposer m_composer{m_notes};
    EmergencyAnswers m_emergencies{m_notes};
};

QTEST_GUILESS_MAIN(QuestionTablesTest)
#include "QuestionTablesTest.moc"
