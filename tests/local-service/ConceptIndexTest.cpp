#include "ConceptIndex.h"

#include "StudyNotes.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ConceptIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsNames_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("titles");

        const QString infarction = u"Infarto agudo de miocardio"_s;
        QTest::newRow("title") << u"la Mitosis"_s << QStringList{u"Mitosis"_s};
        QTest::newRow("no accents") << u"QUE ES LA NEUMONIA?"_s << QStringList{u"Neumonía"_s};
        QTest::newRow("plural") << u"las mitocondrias"_s << QStringList{u"Mitocondria"_s};
        QTest::newRow("plural of several words")
            << u"infartos agudos de miocardio"_s << QStringList{infarction};
        QTest::newRow("other prepositions")
            << u"infarto agudo del miocardio"_s << QStringList{infarction};
        QTest::newRow("abbreviation") << u"un iam"_s << QStringList{infarction};
        QTest::newRow("abbreviation of another name")
            << u"HTA"_s << QStringList{u"Hipertensión arterial"_s};
        QTest::newRow("typo") << u"la mitocndria"_s << QStringList{u"Mitocondria"_s};
        QTest::newRow("as it sounds") << u"la mitozis"_s << QStringList{u"Mitosis"_s};
        QTest::newRow("another form of a word")
            << u"la membrana de la célula"_s << QStringList{u"Membrana plasmática"_s};
        QTest::newRow("several, in order")
            << u"meiosis y mitosis"_s << QStringList{u"Meiosis"_s, u"Mitosis"_s};
        QTest::newRow("the longest where they overlap")
            << u"anemia ferropénica"_s << QStringList{u"Anemia ferropénica"_s};
        QTest::newRow("part of a word") << u"mitosisina"_s << QStringList{};
        QTest::newRow("unknown") << u"ciclo de la urea"_s << QStringList{};
        QTest::newRow("short name") << u"síndrome de down"_s << QStringList{u"Síndrome de Down"_s};
        QTest::newRow("short name alone") << u"Down"_s << QStringList{u"Síndrome de Down"_s};
        QTest::newRow("short name in English") << u"Down the hatch"_s << QStringList{};
        QTest::newRow("short name in an English sentence")
            << u"slow down please"_s << QStringList{};
        QTest::newRow("something else by a like name")
            << u"la diabetes insípida"_s << QStringList{};
        QTest::newRow("nothing") << QString() << QStringList{};
    }
    void findsNames()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, titles);
        const ConceptIndex &index = m_notes.index();
        QStringList found;
        for (const ConceptMention &mention : index.mentions(index.words(text)))
            found += mention.known->title;
        QCOMPARE(found, titles);
    }

    void tellsWhereANameStands()
    {
        const ConceptIndex &index = m_notes.index();
        const auto mentions = index.mentions(index.words(u"¿Qué es el infarto de miocardio?"_s));
        QCOMPARE(mentions.size(), 1);
        QCOMPARE(mentions.first().firstWord, 3);
        QCOMPARE(mentions.first().wordCount, 3);
    }

    void findsEveryConceptByItsTitle()
    {
        for (const StudyConcept &known : m_notes.concepts()) {
            const StudyConcept *found = m_notes.conceptIn(u"¿qué es "_s + known.title + u'?');
            QVERIFY2(
                found == &known,
                qUtf8Printable(known.title + u" gives "_s + (found ? found->title : u"nothing"_s)));
        }
    }

    void findsLines()
    {
        const ConceptIndex &index = m_notes.index();
        const auto lines = index.linesAbout({u"fragmentos"_s, u"okazaki"_s}, nullptr);
        QVERIFY(!lines.isEmpty());
        QCOMPARE(lines.first().line.known->title, u"Replicación del ADN"_s);
        QCOMPARE(lines.first().wordCount, 2);
        QVERIFY(lines.first().share > 0.99);
        QVERIFY(index.linesAbout({u"futbol"_s}, nullptr).isEmpty());
        QVERIFY(index.linesAbout({u"que"_s, u"es"_s}, nullptr).isEmpty());
        // The title says nothing about which line.
        const auto *known = m_notes.conceptIn(u"neumonía"_s);
        QVERIFY(index.linesAbout({u"neumonia"_s}, known).isEmpty());
    }

    void readsTheBeginningOfALongText()
    {
        const QString text = u"la mitosis "_s + QString(1'000'000, u'x') + u" meiosis"_s;
        const ConceptIndex &index = m_notes.index();
        QCOMPARE(index.mentions(index.words(text)).size(), 1);
    }

private:
    StudyNotes m_notes;
};

QTEST_APPLESS_MAIN(ConceptIndexTest)
#include "ConceptIndexTest.moc"
