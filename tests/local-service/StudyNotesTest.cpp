#include "StudyNotes.h"

#include "FoldedText.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

// What the answers can put in a form besides the keys of a concept.
static const QSet<QString> composedNames{u"Tema"_s,
                                         u"aclaración"_s,
                                         u"alto"_s,
                                         u"ancho"_s,
                                         u"anterior"_s,
                                         u"anteriores"_s,
                                         u"antes"_s,
                                         u"aspecto"_s,
                                         u"ayuda"_s,
                                         u"bytes"_s,
                                         u"cantidad"_s,
                                         u"cercano"_s,
                                         u"cercanos"_s,
                                         u"concepto"_s,
                                         u"consulta"_s,
                                         u"cuántos"_s,
                                         u"declarado"_s,
                                         u"después"_s,
                                         u"definición"_s,
                                         u"fuera"_s,
                                         u"detalle"_s,
                                         u"directo"_s,
                                         u"ejemplo"_s,
                                         u"falta"_s,
                                         u"falta otro"_s,
                                         u"hay"_s,
                                         u"irreconocible"_s,
                                         u"lado"_s,
                                         u"materia"_s,
                                         u"materias"_s,
                                         u"nada"_s,
                                         u"nombre"_s,
                                         u"nuevo"_s,
                                         u"numerado"_s,
                                         u"número"_s,
                                         u"opciones"_s,
                                         u"parte"_s,
                                         u"pedidas"_s,
                                         u"punto"_s,
                                         u"renglón"_s,
                                         u"significado"_s,
                                         u"sin nombre"_s,
                                         u"solución"_s,
                                         u"tema"_s,
                                         u"temas"_s,
                                         u"texto"_s,
                                         u"tipo"_s,
                                         u"título"_s,
                                         u"término"_s,
                                         u"valor"_s,
                                         u"clave principal"_s,
                                         u"paso a explicar"_s,
                                         u"pregunta inicial"_s};

static const QSet<QString> conceptKeys{u"qué es"_s, u"paso"_s,      u"clave"_s,    u"clínica"_s,
                                       u"error"_s,  u"distingue"_s, u"pregunta"_s, u"respuesta"_s,
                                       u"caso"_s,   u"resolución"_s};

// The sides of a concept that a question may ask for. A note has those that make sense for it.
static const QSet<QString> sideKeys{
    u"función"_s,     u"partes"_s,        u"tipos"_s,  u"fases"_s,     u"ubicación"_s,
    u"relaciones"_s,  u"origen"_s,        u"cuándo"_s, u"derivados"_s, u"irrigación"_s,
    u"inervación"_s,  u"herencia"_s,      u"causas"_s, u"síntomas"_s,  u"diagnóstico"_s,
    u"tratamiento"_s, u"complicaciones"_s};

static const QStringList forms{u"aspecto"_s,
                               u"aspecto-lado"_s,
                               u"aspecto-otros"_s,
                               u"aspecto-pasos"_s,
                               u"ayuda"_s,
                               u"caso"_s,
                               u"comparar"_s,
                               u"comparar-lado"_s,
                               u"comparar-partes"_s,
                               u"comparar-renglon"_s,
                               u"concepto"_s,
                               u"corto"_s,
                               u"cuidado"_s,
                               u"desconocido"_s,
                               u"despedida"_s,
                               u"entendido"_s,
                               u"explicar"_s,
                               u"gracias"_s,
                               u"imagen"_s,
                               u"menciones"_s,
                               u"pie"_s,
                               u"practicar"_s,
                               u"punto"_s,
                               u"punto-que-no-esta"_s,
                               u"razonar"_s,
                               u"razonar-signo"_s,
                               u"resumen"_s,
                               u"saludo"_s,
                               u"seguir"_s,
                               u"seguir-fin"_s,
                               u"simple"_s,
                               u"sin-mas-preguntas"_s,
                               u"sin-tema"_s,
                               u"temas"_s};

class StudyNotesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFormIsThereAndNamesOnlyWhatCanBeFilled_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : forms + StudyNotes::subjects())
            QTest::newRow(qUtf8Printable(name)) << name;
    }
    void everyFormIsThereAndNamesOnlyWhatCanBeFilled()
    {
        QFETCH(QString, name);
        const QStringList form = m_notes.form(name);
        QVERIFY(!form.isEmpty());
        for (const QString &used : formNames(form)) {
            QVERIFY2(composedNames.contains(used) || conceptKeys.contains(used),
                     qUtf8Printable(used));
        }
    }

    void aSubjectsPageHasSubstance_data()
    {
        QTest::addColumn<QString>("subject");
        for (const QString &subject : StudyNotes::subjects())
            QTest::newRow(qUtf8Printable(subject)) << subject;
    }
    void aSubjectsPageHasSubstance()
    {
        QFETCH(QString, subject);
        const QStringList page = fillForm(m_notes.form(subject), {});
        QVERIFY(page.size() >= 30 && page.size() <= 60);
        QCOMPARE(page.first(), "# "_L1 + subject);
        const auto countOf = [&](const QString &pattern) {
            return page.filter(QRegularExpression(pattern)).size();
        };
        QVERIFY(countOf(u"^## "_s) >= 5);
        QVERIFY(countOf(u"^- "_s) >= 10);
        QVERIFY(countOf(u"^\\d+\\. "_s) >= 3);
        QVERIFY(countOf(u"\\*\\*[^*]+\\*\\*"_s) >= 10);
    }

    void everyConceptIsWhole()
    {
        for (const QString &subject : StudyNotes::subjects())
            QVERIFY2(m_notes.conceptsOf(subject).size() >= 15, qUtf8Printable(subject));
        for (const StudyConcept &known : m_notes.concepts()) {
            const auto keys = known.values.keys();
            QVERIFY2(QSet<QString>(keys.begin(), keys.end()).contains(conceptKeys),
                     qUtf8Printable(known.title));
            QVERIFY2(known.values[u"paso"_s].size() >= 3, qUtf8Printable(known.title));
            QVERIFY2(known.values[u"pregunta"_s].size() >= 3, qUtf8Printable(known.title));
            QCOMPARE(known.values[u"pregunta"_s].size(), known.values[u"respuesta"_s].size());
            QSet<QString> sides(keys.begin(), keys.end());
            sides -= conceptKeys;
            QVERIFY2(sides.size() >= 2, qUtf8Printable(known.title));
            for (const QString &key : sides)
                QVERIFY2(sideKeys.contains(key), qUtf8Printable(known.title + u": "_s + key));
            if (known.subject == "Medicina Interna"_L1) {
                for (const QString &key :
                     {u"causas"_s, u"síntomas"_s, u"diagnóstico"_s, u"tratamiento"_s})
                    QVERIFY2(sides.contains(key), qUtf8Printable(known.title + u": "_s + key));
            }
        }
    }

    void everySideCanBeAskedFor()
    {
        QSet<QString> asked;
        for (const NoteSection &section : m_notes.phrases(u"aspectos"_s)) {
            const QStringList keys = section.values[u"clave"_s] + section.values[u"si falta"_s];
            for (const QString &key : keys) {
                QVERIFY2(sideKeys.contains(key) || conceptKeys.contains(key), qUtf8Printable(key));
                asked += key;
            }
        }
        QVERIFY(asked.contains(sideKeys));
    }

    void noTwoConceptsShareAName()
    {
        QSet<QString> names;
        for (const StudyConcept &known : m_notes.concepts()) {
            for (const QString &name : known.names + known.otherThings) {
                const QString folded = foldedText(name);
                QVERIFY2(!names.contains(folded), qUtf8Printable(name));
                names.insert(folded);
            }
        }
    }

    void boldMarkersComeInPairs()
    {
        QStringList lines;
        for (const QString &name : forms + StudyNotes::subjects())
            lines += m_notes.form(name);
        for (const StudyConcept &known : m_notes.concepts()) {
            for (const QStringList &values : known.values)
                lines += values;
        }
        for (const QString &line : lines)
            QVERIFY2(line.count("**"_L1) % 2 == 0, qUtf8Printable(line));
    }

    void findsConcepts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");

        QTest::newRow("title") << u"la Mitosis"_s << u"Mitosis"_s;
        QTest::newRow("no accents") << u"QUE ES LA NEUMONIA?"_s << u"Neumonía"_s;
        QTest::newRow("other name") << u"un IAM"_s << u"Infarto agudo de miocardio"_s;
        QTest::newRow("the longest name wins") << u"válvulas cardíacas y hueso"_s << u"Corazón"_s;
        QTest::newRow("part of a word") << u"mitosisina"_s << QString();
        QTest::newRow("unknown") << u"ciclo de la urea"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
    }
    void findsConcepts()
    {
        QFETCH(QString, text);
        QFETCH(QString, title);
        const StudyConcept *found = m_notes.conceptIn(text);
        QCOMPARE(found ? found->title : QString(), title);
    }

    void findsSubjects()
    {
        QCOMPARE(StudyNotes::subjectIn(u"quiero HISTOLOGIA ya"_s), u"Histología"_s);
        QCOMPARE(StudyNotes::subjectIn(u"medicina interna"_s), u"Medicina Interna"_s);
        QCOMPARE(StudyNotes::subjectIn(u"medicina"_s), QString());
    }

private:
    StudyNotes m_notes;
};

QTEST_APPLESS_MAIN(StudyNotesTest)
#include "StudyNotesTest.moc"
