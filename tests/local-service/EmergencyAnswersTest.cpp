#include "EmergencyAnswers.h"

#include "StudyNotes.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class EmergencyAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersEmergencies_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("number");

        const auto row = [](const char *message, const QString &number) {
            QTest::newRow(message) << QString::fromUtf8(message) << number;
        };
        row("me duele el pecho y se me va al brazo", u"107"_s);
        row("ME DUELE MUCHO EL PECHO", u"107"_s);
        row("estudiando para el parcial me empezó a doler el pecho, me duele el pecho fuerte",
            u"107"_s);
        row("mi papá tiene un dolor en el pecho que no se le va", u"107"_s);
        row("creo que me está dando un infarto", u"107"_s);
        row("se me durmió media cara y no puedo hablar bien", u"107"_s);
        row("a mi abuela se le torció la boca", u"107"_s);
        row("me corté y no para de sangrar", u"107"_s);
        row("estoy vomitando sangre", u"107"_s);
        row("mi hijo se tomó lavandina", u"0800 333 0160"_s);
        row("me tomé veinte pastillas de clonazepam", u"0800 333 0160"_s);
        row("me quiero morir", u"135"_s);
        row("kiero matarme", u"135"_s);
        row("no quiero vivir más", u"135"_s);
        row("desaprobé el final y me quiero matar, lo digo en serio", u"135"_s);
        row("mi amiga se quiere matar", u"107"_s);
        row("mi bebé no respira", u"107"_s);
        row("se me está cerrando la garganta", u"107"_s);
        row("mi viejo se desmayó y no responde", u"107"_s);
        row("mi hermano está convulsionando", u"107"_s);
        row("siento que me aplastan el pecho", u"107"_s);
        row("ya no quiero estar en este mundo", u"135"_s);
        row("sería mejor no estar", u"135"_s);
        row("choqué con la moto y no siento las piernas", u"107"_s);
        row("necesito una ambulancia", u"107"_s);
        row("soy paciente cardíaco y me duele el pecho", u"107"_s);
    }
    void answersEmergencies()
    {
        QFETCH(QString, message);
        QFETCH(QString, number);
        const auto answer = m_emergencies.answerTo(message);
        QVERIFY(answer);
        QVERIFY(answer->subject.isEmpty());
        QVERIFY(answer->lines.size() >= 3 && answer->lines.size() <= 5);
        QVERIFY2(answer->lines.first().contains(number), qUtf8Printable(answer->lines.first()));
        QVERIFY(answer->lines.first().startsWith("**"_L1));
    }

    void givesTheFirstAidThatFits_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("said");
        QTest::addColumn<QString>("unsaid");
        const auto row = [](const char *message, const QString &said, const QString &unsaid) {
            QTest::newRow(message) << QString::fromUtf8(message) << said << unsaid;
        };
        const QString choking = u"omóplatos"_s;
        const QString compressions = u"comprimí fuerte"_s;
        row("mi papá se desmayó y no respira", compressions, choking);
        row("dejó de respirar mi abuelo", compressions, choking);
        row("se está atragantando mi hermano con un pedazo de carne", choking, u"adrenalina"_s);
        row("se ahogó mi sobrino con una uva", choking, u"adrenalina"_s);
        row("me picó una abeja y se me cierra la garganta", u"adrenalina"_s, choking);
        row("se me hinchó la lengua después de comer maní", u"adrenalina"_s, choking);
        row("mi novio se agarró la corriente y quedó inconsciente", u"cortá la luz"_s, choking);
        row("mi hermano se electrocutó", u"No toques"_s, choking);
        row("mi bebé no respira", u"dos dedos"_s, choking);
        row("mi bebé se está poniendo azul", u"dos dedos"_s, choking);
        row("tengo asma y el puf no me hace nada, no puedo respirar", u"Sentado"_s,
            u"usá el inhalador"_s);
        row("mi compañero dice que se va a tirar por el balcón", u"esa persona"_s,
            u"lo que sentís"_s);
        row("mi hermana se cortó las venas", u"Apretá fuerte"_s, u"lo que sentís"_s);
        row("me apuñalaron", u"Apretá fuerte"_s, u"se cayó o chocó"_s);
        row("le dispararon a mi amigo", u"Apretá fuerte"_s, u"se cayó o chocó"_s);
        row("mi hermano se quemó con aceite caliente", u"agua corriente"_s, u"chocó"_s);
        row("se atraganto con una salchicha se esta poniendo azul", choking, u"sentado"_s);
        row("mi abuelo se esta poniendo azul y no puede hablar, estaba almorzando", choking,
            u"ACV"_s);
        row("nene se puso azul comiendo uva", choking, u"sentado"_s);
        row("me mordio una yarara", u"torniquete"_s, u"envase"_s);
        row("me picó un alacrán y siento hormigueos por todos lados", u"anillos"_s, u"envase"_s);
        row("mi hijo lo pico un alacran", u"suero"_s, u"envase"_s);
        row("me salto acido en el ojo", u"Enjuagá ya"_s, u"vómito"_s);
        row("se le metio lavandina en el ojo a mi nena", u"Enjuagá ya"_s, u"vómito"_s);
        row("se inyecto algo y casi no respira", u"de costado"_s, u"sentado"_s);
        row("mi viejo es diabetico esta todo transpirado y dice boludeces", u"puede tragar"_s,
            choking);
        row("mi viejo tiene diabetes y esta desorientado y transpira frio", u"puede tragar"_s,
            choking);
        row("bajon de azucar a mi hermana diabetica", u"puede tragar"_s, choking);
        row("mi marido es diabetico y esta inconsciente", u"nada por la boca"_s, choking);
        row("embarazada de 7 meses con presion alta y ve lucecitas", u"lado izquierdo"_s, choking);
        row("fiebre y manchitas violetas que no se borran", u"cuello duro"_s, choking);
        row("se golpeo la cabeza y vomito tres veces", u"No muevas"_s, choking);
        row("choco en la moto y no siente las piernas", u"No muevas"_s, u"ACV"_s);
        row("mi primo se cayo de la moto y no puede mover las piernas", u"No muevas"_s, u"ACV"_s);
        row("mollera hundida y no moja pañales", u"sales de rehidratación"_s, choking);
        row("caga negro y esta palido", u"materia fecal"_s, choking);
        row("dolor de huevo terrible", u"torsión"_s, choking);
        row("tengo el corazon a mil y me voy a desmayar", u"acelerado"_s, choking);
        row("mi novio me pego y me duele la panza", u"no es tu culpa"_s, choking);
        row("hay un incendio en mi edificio y mi abuela esta adentro", u"**Salgan ya"_s, choking);
        row("hay olor a gas y mi vieja esta desmayada", u"**Salgan ya"_s, u"vómito"_s);
        row("mi hermana esta convulsionando en el piso", u"**No lo sujetes"_s, choking);
        row("se le volco agua hirviendo encima a mi nena, tiene todo el pecho quemado",
            u"**Lejos del fuego, enfriá ya"_s, choking);
        row("mi hijo se cayo a la pileta y lo sacamos azul", u"empezá con ellas"_s, choking);
    }
    void givesTheFirstAidThatFits()
    {
        QFETCH(QString, message);
        QFETCH(QString, said);
        QFETCH(QString, unsaid);
        const auto answer = m_emergencies.answerTo(message);
        QVERIFY(answer);
        const QString text = answer->lines.join(u'\n');
        QVERIFY2(text.contains(said), qUtf8Printable(text));
        QVERIFY2(!text.contains(unsaid), qUtf8Printable(text));
    }

    void leavesStudyAlone_data()
    {
        QTest::addColumn<QString>("message");
        for (const char *message :
             {"¿qué es un infarto?", "síntomas de ACV",
              "¿por qué el dolor del infarto va al brazo?",
              "caso clínico de un hombre de 60 años con dolor de pecho",
              "paciente que refiere \"me duele el pecho\"",
              "tratamiento de la sobredosis de opioides", "explicame hemorragia digestiva",
              "factores de riesgo de suicidio", "me muero de sueño", "este parcial me mata",
              "tengo que estudiar dolor torácico", "tomé un café y sigo con histología",
              "¿qué hago si un paciente convulsiona?",
              "mi abuelo murió de un infarto hace años, ¿qué es un infarto?",
              "no doy más con anatomía", "me duele la cabeza de tanto leer",
              "corté un órgano en el TP de anatomía", "hola", ""})
            QTest::newRow(message) << QString::fromUtf8(message);
    }
    void leavesStudyAlone()
    {
        QFETCH(QString, message);
        QVERIFY(!m_emergencies.answerTo(message));
    }

    void caresForAFigureOfSpeech()
    {
        for (const QString &message : {u"me quiero morir con este parcial"_s,
                                       u"me quiero matar, no entiendo la meiosis"_s}) {
            QVERIFY(!m_emergencies.answerTo(message));
            const auto care = m_emergencies.careLine(message);
            QVERIFY(care);
            QVERIFY(care->contains(u"135"_s) && care->contains(u"107"_s));
        }
        QVERIFY(!m_emergencies.careLine(u"explicame la meiosis"_s));
        QVERIFY(!m_emergencies.careLine(u"me muero de sueño con este parcial"_s));
    }

    void everyAnswerSaysWhomToCall()
    {
        const auto sections = m_notes.phrases(u"urgencias"_s);
        int answers = 0;
        for (const NoteSection &section : sections) {
            if (!section.title.startsWith(u"respuesta: "_s))
                continue;
            ++answers;
            // Numbers are written once, where they can be confirmed.
            for (const QString &line : section.values[u"línea"_s]) {
                static const QRegularExpression number(u"\\d{3}"_s);
                QVERIFY2(!number.match(line).hasMatch(), qUtf8Printable(line));
                QCOMPARE(line.count("**"_L1) % 2, 0);
            }
            QVERIFY2(section.values[u"línea"_s].join(u' ').contains(u"{emergencias}"_s),
                     qUtf8Printable(section.title));
        }
        QCOMPARE(answers, 33);
    }

    void findsAnEmergencyAnywhereInALongMessage_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("at the beginning") << 0 << 9000;
        QTest::newRow("at the end") << 9000 << 0;
        QTest::newRow("in the middle") << 9000 << 9000;
        // Wherever two parts meet.
        for (int before = 1970; before <= 2000; before += 5)
            QTest::addRow("after %d characters", before) << before << 9000;
    }
    void findsAnEmergencyAnywhereInALongMessage()
    {
        QFETCH(int, before);
        QFETCH(int, after);
        // Pasted from a book, with a patient who says nothing about the one who writes.
        const QString book
            = u"El paciente con neumonía suele tener fiebre, tos y dolor. "_s.repeated(400);
        const QString cry = u". Mi papá no respira, ayuda. "_s;
        const auto answer = m_emergencies.answerTo(book.first(before) + cry + book.first(after));
        QVERIFY(answer);
        QVERIFY(answer->lines.first().contains(u"107"_s));
        QVERIFY(!m_emergencies.answerTo(book.first(before + after)));
    }

    void caresForAFigureOfSpeechAtTheEnd()
    {
        const QString notes = u"La mitosis tiene fases y la meiosis también. "_s.repeated(100);
        QVERIFY(m_emergencies.careLine(notes + u"me quiero morir con este parcial"_s));
        QVERIFY(!m_emergencies.careLine(notes));
    }

    // A message is read in parts of the same size: twice the message takes twice the time.
    void readsALongMessageWhole()
    {
        QVERIFY(!m_emergencies.answerTo(u"me duele "_s.repeated(20'000)));
        QVERIFY(m_emergencies.answerTo(u"me duele "_s.repeated(20'000) + u"el pecho"_s));
    }

private:
    StudyNotes m_notes;
    EmergencyAnswers m_emergencies{m_notes};
};

QTEST_APPLESS_MAIN(EmergencyAnswersTest)
#include "EmergencyAnswersTest.moc"
