#include "PracticeQuestions.h"

#include "StudyNotes.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

class PracticeQuestionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesQuestionsOfANote()
    {
        const StudyNotes notes;
        for (const StudyConcept &known : notes.concepts()) {
            const auto questions = practiceQuestions(known);
            QVERIFY2(questions.size() >= 5, qUtf8Printable(known.title));
            QSet<QString> texts;
            for (const PracticeQuestion &question : questions) {
                QVERIFY2(!question.text.isEmpty() && !question.answer.isEmpty(),
                         qUtf8Printable(known.title));
                texts += question.text;
            }
            QCOMPARE(texts.size(), questions.size());
            QCOMPARE(questions.first().text, known.values[u"pregunta"_s].first());
            QCOMPARE(questions.first().answer, known.values[u"respuesta"_s].first());
        }
    }
};

QTEST_APPLESS_MAIN(PracticeQuestionsTest)
#include "PracticeQuestionsTest.moc"
