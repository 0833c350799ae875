#include "PhraseBook.h"

#include <QTest>

using namespace Qt::StringLiterals;

class PhraseBookTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parsesSections()
    {
        const auto sections = parseNoteSections(
            {u"> para quien lee"_s, u"# Uno"_s, u"a: b: c"_s, u""_s, u"a:  d "_s, u"# Dos"_s});
        QCOMPARE(sections.size(), 2);
        QCOMPARE(sections[0].title, u"Uno"_s);
        QCOMPARE(sections[0].values[u"a"_s], (QStringList{u"b: c"_s, u"d"_s}));
        QVERIFY(sections[1].values.isEmpty());
    }

    void finds_data()
    {
        QTest::addColumn<QString>("phrase");
        QTest::addColumn<QString>("said");
        QTest::addColumn<bool>("isFound");

        QTest::newRow("words") << u"mas corto"_s << u"lo quiero mas corto ya"_s << true;
        QTest::newRow("whole words") << u"mas corto"_s << u"lo quiero mas cortos"_s << false;
        QTest::newRow("not inside a word") << u"mas corto"_s << u"ademas corto"_s << false;
        QTest::newRow("accents") << u"Más corto"_s << u"mas corto"_s << true;
        QTest::newRow("one of several") << u"(mas|muy) largo"_s << u"muy largo"_s << true;
        QTest::newRow("none of several") << u"(mas|muy) largo"_s << u"re largo"_s << false;
        QTest::newRow("missing") << u"no (lo)? entendi"_s << u"no entendi"_s << true;
        QTest::newRow("there") << u"no (lo)? entendi"_s << u"no lo entendi"_s << true;
        QTest::newRow("missing in an alternative")
            << u"no (quiero|puedo (mas)? seguir)"_s << u"no puedo seguir"_s << true;
        QTest::newRow("one of several or the end") << u"no (mas|$)"_s << u"que no"_s << true;
        QTest::newRow("beginning of a word") << u"explic*"_s << u"explicame"_s << true;
        QTest::newRow("any word") << u"me duele * pecho"_s << u"me duele el pecho"_s << true;
        QTest::newRow("only one word") << u"me duele * pecho"_s << u"me duele pecho"_s << false;
        QTest::newRow("gap") << u"duele ... pecho"_s << u"duele mucho todo el pecho"_s << true;
        QTest::newRow("gap of none") << u"duele ... pecho"_s << u"duele pecho"_s << true;
        QTest::newRow("gap too wide")
            << u"duele ... pecho"_s << u"duele a b c d e f pecho"_s << false;
        QTest::newRow("beginning") << u"^ hola"_s << u"che hola"_s << false;
        QTest::newRow("end") << u"hola $"_s << u"hola che"_s << false;
        QTest::newRow("list") << u"a {persona} le duele"_s << u"a mi tia le duele"_s << true;
    }
    void finds()
    {
        QFETCH(QString, phrase);
        QFETCH(QString, said);
        QFETCH(bool, isFound);
        const PhraseBook book(
            {{u"listas"_s, {{u"persona"_s, {u"mi tía|mi tío"_s}}}},
             {u"uno"_s, {{u"si dice"_s, {u"otra cosa"_s, phrase}}, {u"nota"_s, {u"hola"_s}}}}},
            u"si dice"_s);
        QCOMPARE(book.holds(u"uno"_s, said.split(u' ')), isFound);
        QCOMPARE(book.matches(said.split(u' ')).size(), isFound ? 1 : 0);
    }

    void tellsWhere()
    {
        const PhraseBook book({{u"uno"_s, {{u"si dice"_s, {u"mas corto"_s}}}}}, u"si dice"_s);
        const auto match = book.match(u"uno"_s, {u"lo"_s, u"quiero"_s, u"mas"_s, u"corto"_s});
        QVERIFY(match);
        QCOMPARE(match->firstWord, 2);
        QCOMPARE(match->wordCount, 2);
        QVERIFY(!book.match(u"dos"_s, {u"mas"_s, u"corto"_s}));
    }

    void correctsSlips()
    {
        const PhraseBook book({{u"uno"_s, {{u"si dice"_s, {u"dolor de pecho"_s}}}}}, u"si dice"_s);
        const auto isWord = [](const QString &word) { return word == "dolro"_L1; };
        QCOMPARE(book.corrected({u"dolo"_s, u"pehco"_s, u"techo"_s, u"dolro"_s}, isWord),
                 (QStringList{u"dolor"_s, u"pecho"_s, u"techo"_s, u"dolro"_s}));
    }
};

QTEST_APPLESS_MAIN(PhraseBookTest)
#include "PhraseBookTest.moc"
