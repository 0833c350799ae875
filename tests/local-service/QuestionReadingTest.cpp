#include "QuestionReading.h"

#include "StudyNotes.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(QuestionKind)

class QuestionReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsKinds_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QuestionKind>("kind");
        QTest::addColumn<QString>("main");

        const auto row = [](const char *message, QuestionKind kind, const QString &main = {}) {
            QTest::newRow(message) << QString::fromUtf8(message) << kind << main;
        };
        row("¿Qué es la mitosis?", QuestionKind::Concept, u"Mitosis"_s);
        row("para que sirven las mitocondrias", QuestionKind::Concept, u"Mitocondria"_s);
        row("Explicame paso a paso: la mitosis", QuestionKind::Explanation, u"Mitosis"_s);
        row("resumen de anemia porfa", QuestionKind::Summary, u"Anemia"_s);
        row("diferencia entre mitosis y meiosis", QuestionKind::Comparison, u"Mitosis"_s);
        row("mitosis vs meiosis", QuestionKind::Comparison, u"Mitosis"_s);
        row("haceme 5 preguntas de neumonia", QuestionKind::Practice, u"Neumonía"_s);
        row("tomame mitosis", QuestionKind::Practice, u"Mitosis"_s);
        row("dame un caso de neumonía", QuestionKind::ClinicalCase, u"Neumonía"_s);
        row("en caso de neumonía, ¿qué bacteria es?", QuestionKind::Concept, u"Neumonía"_s);
        row("cómo encaro una anemia", QuestionKind::Reasoning, u"Anemia"_s);
        row("Quiero estudiar Genética.", QuestionKind::Subject);
        row("síntesis de proteínas", QuestionKind::Concept, u"Síntesis de proteínas"_s);
        row("enzimas de la replicación del ADN", QuestionKind::Concept, u"Replicación del ADN"_s);
        row("No entendí el punto 3", QuestionKind::Point);
        row("no entendí el punto 3 de la mitosis", QuestionKind::Point, u"Mitosis"_s);
        row("más corto", QuestionKind::Shorter);
        row("seguí", QuestionKind::Continuation);
        row("dale, seguí", QuestionKind::Continuation);
        row("otro ejemplo", QuestionKind::Example);
        row("dame más preguntas", QuestionKind::MorePractice);
        row("otro caso", QuestionKind::AnotherCase);
        row("no entendí nada", QuestionKind::Simpler);
        row("¿cuáles son las respuestas?", QuestionKind::Solutions);
        row("hola!!", QuestionKind::Greeting);
        row("hola, qué es la mitosis?", QuestionKind::Concept, u"Mitosis"_s);
        row("hola, qué es la gota?", QuestionKind::Concept);
        row("gracias!", QuestionKind::Thanks);
        row("gracias! y la meiosis?", QuestionKind::Concept, u"Meiosis"_s);
        row("chau", QuestionKind::Farewell);
        row("qué podés hacer?", QuestionKind::Help);
        row("ok, entendí", QuestionKind::Acknowledgement);
    }
    void tellsKinds()
    {
        QFETCH(QString, message);
        QFETCH(QuestionKind, kind);
        QFETCH(QString, main);
        const QuestionReading reading = m_reader.read(message);
        QCOMPARE(static_cast<int>(reading.kind), static_cast<int>(kind));
        QCOMPARE(reading.main ? reading.main->title : QString(), main);
    }

    void tellsNumbers()
    {
        QCOMPARE(m_reader.read(u"haceme 7 preguntas de anemia"_s).number, 7);
        QCOMPARE(m_reader.read(u"haceme tres preguntas de anemia"_s).number, 3);
        QCOMPARE(m_reader.read(u"haceme una pregunta de anemia"_s).number, 1);
        QCOMPARE(m_reader.read(u"haceme preguntas de anemia"_s).number, 0);
        QCOMPARE(m_reader.read(u"no entendí el punto 3"_s).number, 3);
        QCOMPARE(m_reader.read(u"tomame mitosis, 3 preguntas"_s).number, 3);
        QCOMPARE(m_reader.read(u"no entendí el último punto"_s).number, -1);
        QCOMPARE(m_reader.read(u"no entendí el tercer paso"_s).number, 3);
    }

    void tellsAspects()
    {
        const auto aspects = [this](const QString &text) { return m_reader.read(text).aspects; };
        QCOMPARE(aspects(u"causas de anemia"_s), QStringList{u"Causas"_s});
        QVERIFY(aspects(u"síntomas de la EPOC"_s).contains(u"Síntomas y signos"_s));
        QVERIFY(aspects(u"¿para qué sirve la placenta?"_s).contains(u"Función"_s));
        QCOMPARE(aspects(u"la mitosis"_s), QStringList());
        // In the order asked, not in that of the file.
        QCOMPARE(aspects(u"tratamiento y causas del asma"_s),
                 (QStringList{u"Tratamiento"_s, u"Causas"_s}));
    }

    void tellsCommonNames()
    {
        QVERIFY(m_reader.read(u"el músculo"_s).hasOnlyCommonNames);
        const QuestionReading reading = m_reader.read(u"músculos del hombro"_s);
        QVERIFY(!reading.hasOnlyCommonNames);
        QCOMPARE(reading.main->title, u"Manguito rotador"_s);
        QCOMPARE(reading.aspects, QStringList{u"Partes"_s});
    }

    void setsNamesSideBySide()
    {
        QCOMPARE(m_reader.read(u"diferencias mitosis meiosis"_s).sides,
                 (QStringList{u"Mitosis"_s, u"Meiosis"_s}));
        QCOMPARE(m_reader.read(u"diabetes 1 y 2, diferencias"_s).concepts.size(), 2);
    }

    void tellsSubjects()
    {
        QCOMPARE(m_reader.read(u"qué temas de anato tenés"_s).subject, u"Anatomía"_s);
        QCOMPARE(m_reader.read(u"quiero estudiar medicina interna"_s).subject,
                 u"Medicina Interna"_s);
        QCOMPARE(m_reader.read(u"quiero estudiar física"_s).subject, QString());
    }

    void tellsSides()
    {
        QCOMPARE(m_reader.read(u"diferencias entre el pulmón derecho y el izquierdo"_s).sides,
                 (QStringList{u"pulmón derecho"_s, u"izquierdo"_s}));
        QCOMPARE(m_reader.read(u"Compará estos conceptos: gota, artrosis; lupus"_s).sides,
                 (QStringList{u"gota"_s, u"artrosis"_s, u"lupus"_s}));
        QVERIFY(m_reader.read(u"¿qué es la gota?"_s).sides.isEmpty());
    }

    void tellsTheUnknownTopic()
    {
        QCOMPARE(m_reader.read(u"¿Me explicás el ciclo de la urea, porfa?"_s).topic,
                 u"ciclo de la urea"_s);
        QCOMPARE(m_reader.read(u"más corto"_s).topic, QString());
    }

private:
    StudyNotes m_notes;
    QuestionReader m_reader{m_notes};
};

QTEST_APPLESS_MAIN(QuestionReadingTest)
#include "QuestionReadingTest.moc"
