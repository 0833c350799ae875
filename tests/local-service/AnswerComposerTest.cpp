#include "AnswerComposer.h"

#include "StudyNotes.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

static const auto localServiceLine = u"Soy el servicio local de Aulora"_s;

class AnswerComposerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensWithItsSubject_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("subject");

        for (const QString &subject : StudyNotes::subjects()) {
            QTest::addRow("%s", qUtf8Printable(subject))
                << u"Quiero estudiar %1."_s.arg(subject) << "# "_L1 + subject << subject;
        }
        QTest::newRow("explain, known") << u"Explicame paso a paso: la mitosis"_s
                                        << u"# Paso a paso: La mitosis"_s << u"Mitosis"_s;
        QTest::newRow("explain, unknown")
            << u"Explicame paso a paso: ciclo de la urea."_s << u"# Paso a paso: Ciclo de la urea"_s
            << u"ciclo de la urea"_s;
        QTest::newRow("questions") << u"Creá preguntas de autoevaluación sobre: EPOC"_s
                                   << u"# Autoevaluación: EPOC"_s << u"EPOC"_s;
        QTest::newRow("compare") << u"Compará estos conceptos: mitosis y meiosis"_s
                                 << u"# Comparación: Mitosis y meiosis"_s << u"mitosis y meiosis"_s;
        QTest::newRow("reason") << u"Ayudame a razonar clínicamente sobre: dolor torácico"_s
                                << u"# Razonamiento clínico: Dolor torácico"_s
                                << u"dolor torácico"_s;
        QTest::newRow("case") << u"Quiero trabajar con un caso clínico sobre: neumonía"_s
                              << u"# Caso clínico: Neumonía"_s << u"Neumonía"_s;
        QTest::newRow("prompt in lower case")
            << u"explicame paso a paso: X"_s << u"# Paso a paso: X"_s << u"X"_s;
        QTest::newRow("prompt left as it came")
            << u"Explicame paso a paso:"_s << u"# ¿Sobre qué tema?"_s << QString();
        QTest::newRow("comparison left as it came")
            << u"Compará estos conceptos:"_s << u"# ¿Sobre qué tema?"_s << QString();
        QTest::newRow("a subject by name")
            << u"histología"_s << u"# Histología"_s << u"Histología"_s;
        QTest::newRow("another subject")
            << u"Quiero estudiar física"_s << u"# Guía para estudiar: Física"_s << u"física"_s;
        QTest::newRow("a question on a known concept")
            << u"¿Qué es la nefrona?"_s << u"# Nefrona"_s << u"Nefrona"_s;
        QTest::newRow("a question on anything")
            << u"¿Cómo actúa la vitamina D?"_s
            << u"# Guía para estudiar: Cómo actúa la vitamina D"_s << u"actúa y vitamina"_s;
        QTest::newRow("a greeting") << u"¡Hola!"_s << u"# ¡Hola! ¿Qué estudiamos?"_s << QString();
    }
    void opensWithItsSubject()
    {
        QFETCH(QString, message);
        QFETCH(QString, title);
        QFETCH(QString, subject);
        const Answer answer = m_composer.answer({message, u"u"_s, {}}, {});
        QCOMPARE(answer.lines.first(), title);
        QCOMPARE(answer.subject, subject);
        checkLines(answer.lines);
    }

    void formsUseTheirTopic_data()
    {
        QTest::addColumn<QString>("prompt");
        for (const QString &prompt :
             {u"Explicame paso a paso: "_s, u"Creá preguntas de autoevaluación sobre: "_s,
              u"Compará estos conceptos: "_s, u"Ayudame a razonar clínicamente sobre: "_s,
              u"Quiero trabajar con un caso clínico sobre: "_s})
            QTest::newRow(qUtf8Printable(prompt)) << prompt;
    }
    void formsUseTheirTopic()
    {
        QFETCH(QString, prompt);
        const QStringList unknown = m_composer.answer({prompt + u"gota"_s, {}, {}}, {}).lines;
        QVERIFY(unknown.filter(u"gota"_s).size() >= 4);

        // A known topic brings what its note says.
        const QStringList known = m_composer.answer({prompt + u"EPOC"_s, {}, {}}, {}).lines;
        const NoteValues note = m_notes.conceptIn(u"EPOC"_s)->values;
        qsizetype quoted = 0;
        for (const QStringList &values : note) {
            for (const QString &value : values)
                quoted += known.filter(value).isEmpty() ? 0 : 1;
        }
        QVERIFY(quoted >= 5);
        QVERIFY(known != m_composer.answer({prompt + u"anemia"_s, {}, {}}, {}).lines);
    }

    void comparesEveryConcept_data()
    {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<QStringList>("headings");

        QTest::newRow("y") << u"mitosis y meiosis"_s << QStringList{u"Mitosis"_s, u"Meiosis"_s};
        QTest::newRow("e") << u"anatomía e histología"_s
                           << QStringList{u"Anatomía"_s, u"Histología"_s};
        QTest::newRow("vs") << u"EPOC vs. asma"_s << QStringList{u"EPOC"_s, u"Asma"_s};
        QTest::newRow("list") << u"gota, artrosis; lupus y artritis"_s
                              << QStringList{u"Gota"_s, u"Artrosis"_s, u"Lupus"_s, u"Artritis"_s};
        QTest::newRow("comma and y") << u"a1, b1, y c1"_s << QStringList{u"A1"_s, u"B1"_s, u"C1"_s};
        QTest::newRow("at most four")
            << u"a,b,c,d,f"_s << QStringList{u"A"_s, u"B"_s, u"C"_s, u"D"_s};
        QTest::newRow("y inside a word")
            << u"yeyuno, íleon"_s << QStringList{u"Yeyuno"_s, u"Íleon"_s};
    }
    void comparesEveryConcept()
    {
        QFETCH(QString, topic);
        QFETCH(QStringList, headings);
        const QStringList lines
            = m_composer.answer({u"Compará estos conceptos: "_s + topic, {}, {}}, {}).lines;
        QStringList found;
        for (const QString &line : lines) {
            if (line.startsWith("## "_L1))
                found += line.sliced(3);
        }
        QCOMPARE(found.mid(1, headings.size()), headings);
        QCOMPARE(found.value(headings.size() + 1), u"Cómo fijar la diferencia"_s);
        QVERIFY(lines.filter(u"Encontré un solo concepto"_s).isEmpty());
    }

    void asksForASecondConcept()
    {
        const auto lines
            = m_composer.answer({u"Compará estos conceptos: mitosis"_s, {}, {}}, {}).lines;
        QCOMPARE(lines.filter(u"Encontré un solo concepto"_s).size(), 1);
    }

    void saysThatItIsTheLocalService()
    {
        for (const QString &message : {u"¿Cómo actúa la vitamina D?"_s, u"la nefrona"_s, u"hola"_s})
            QCOMPARE(m_composer.answer({message, {}, {}}, {}).lines.filter(localServiceLine).size(),
                     1);
    }

    void usesTheQuestionsTerms()
    {
        const auto lines
            = m_composer.answer({u"¿Cómo se absorbe el calcio en el duodeno?"_s, {}, {}}, {}).lines;
        for (const QString &term : {u"absorbe"_s, u"calcio"_s, u"duodeno"_s})
            QCOMPARE(lines.filter(u"- **%1:**"_s.arg(term)).size(), 1);
    }

    void mentionsWhatCameBefore()
    {
        const QStringList earlier{u"Histología"_s, u"Mitosis"_s, u"gota"_s, u"lupus"_s};
        const QString mention = u"Venías estudiando **Histología**, **Mitosis** y **gota**"_s;
        for (const QString &message :
             {u"Quiero estudiar Anatomía."_s, u"Explicame paso a paso: asma"_s,
              u"Compará estos conceptos: asma y EPOC"_s, u"¿Qué es la nefrona?"_s, u"hola"_s}) {
            const auto lines = m_composer.answer({message, {}, {}}, earlier).lines;
            QCOMPARE(lines.filter(mention).size(), 1);
            checkLines(lines);
        }
    }

    void doesNotMentionWhatIsAsked()
    {
        const auto mentions = [this](const QString &message, const QStringList &earlier) {
            return m_composer.answer({message, {}, {}}, earlier).lines.filter(u"Venías"_s);
        };
        QVERIFY(mentions(u"Quiero estudiar Anatomía."_s, {u"Anatomía"_s}).isEmpty());
        QVERIFY(mentions(u"¿Qué es la mitosis?"_s, {u"Mitosis"_s}).isEmpty());
        QVERIFY(mentions(u"¿Qué es la mitosis?"_s, {}).isEmpty());
    }

    void addsTheDetailAskedOfASubject()
    {
        const auto lines
            = m_composer.answer({u"Quiero estudiar Genética. El síndrome de Down"_s, {}, {}}, {})
                  .lines;
        QCOMPARE(lines.filter(u"**El síndrome de Down**"_s).size(), 1);
        QVERIFY(lines.contains(m_notes.conceptIn(u"down"_s)->values[u"qué es"_s].first()));
    }

    void describesAnImage()
    {
        const QByteArray png = QByteArray::fromBase64(
            "iVBORw0KGgoAAAANSUhEUgAAAAIAAAADCAIAAAA2iEnWAAAAEElEQVR4nGP4z8AARAwQCgAf7gP9i18U1AAA"
            "AABJRU5ErkJggg==");
        const AttachedImage image{png, u"image/png"_s, u"tórax **1**.png"_s};
        const auto lines = m_composer
                               .answer({u"Analizá esta imagen con finalidad educativa médica. "
                                        "Describí los hallazgos relevantes y explicalos de forma "
                                        "didáctica."_s,
                                        {},
                                        image},
                                       {})
                               .lines;
        QVERIFY(lines.contains(u"- **Nombre:** tórax 1.png"_s));
        QVERIFY(lines.contains(u"- **Tipo:** PNG (image/png)"_s));
        QVERIFY(lines.contains(u"- **Tamaño:** 2 × 3 píxeles"_s));
        QVERIFY(lines.contains(u"- **Peso:** %1 bytes"_s.arg(png.size())));
        QVERIFY(lines.filter(u"Declarada"_s).isEmpty());
        QVERIFY(lines.filter(u"## Tu consulta"_s).isEmpty());
        checkLines(lines);
    }

    void saysWhenAnImageIsNotWhatItClaims()
    {
        const auto linesFor = [this](const QByteArray &bytes, const QString &declared) {
            return m_composer
                .answer({u"¿Qué epitelio es?"_s, {}, AttachedImage{bytes, declared, {}}}, {})
                .lines;
        };
        const auto gif = linesFor("GIF89a\x02\x00\x01\x00", u"image/png"_s);
        QCOMPARE(gif.filter(u"**Declarada como:** image/png"_s).size(), 1);
        const auto text = linesFor("hola", u"image/png"_s);
        QCOMPARE(text.filter(u"no es una imagen que sepa reconocer"_s).size(), 1);
        QVERIFY(text.contains(u"- **Peso:** 4 bytes"_s));
        QVERIFY(text.contains(u"- **Nombre:** sin nombre"_s));
        QVERIFY(text.filter(u"píxeles"_s).isEmpty());
        QVERIFY(text.contains(u"## Tu consulta: Qué epitelio es"_s));
    }

    void keepsHostileTextInItsPlace()
    {
        const QString hostile
            = u"{anteriores}\n# Falso\u001b[2J **{tema}** "_s + QString(5000, u'x');
        for (const QString &prompt : {u"Explicame paso a paso: "_s, u""_s,
                                      u"Compará estos conceptos: "_s, u"Quiero estudiar "_s}) {
            const auto lines = m_composer.answer({prompt + hostile, {}, {}}, {}).lines;
            checkLines(lines);
            QVERIFY(lines.filter(QRegularExpression(u"^# Falso"_s)).isEmpty());
            for (const QString &line : lines)
                QVERIFY(line.size() < 1000);
        }
    }

private:
    // What any reader of a reply can count on.
    static void checkLines(const QStringList &lines)
    {
        static const QRegularExpression control(
            u"[\\x{0}-\\x{1f}\\x{7f}-\\x{9f}\\x{2028}\\x{2029}]"_s);
        QVERIFY(!lines.isEmpty());
        for (const QString &line : lines) {
            QVERIFY(!line.trimmed().isEmpty());
            QVERIFY2(!line.contains(control), qUtf8Printable(line));
            QVERIFY2(line.count("**"_L1) % 2 == 0, qUtf8Printable(line));
        }
    }

    StudyNotes m_notes;
    AnswerComposer m_composer{m_notes};
};

QTEST_GUILESS_MAIN(AnswerComposerTest)
#include "AnswerComposerTest.moc"
