#include "SpanishWords.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SpanishWordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sharesStems_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<bool>("isSame");

        QTest::newRow("plural") << u"celulas"_s << u"celula"_s << true;
        QTest::newRow("plural in es") << u"rinones"_s << u"rinon"_s << true;
        QTest::newRow("plural of a word in e") << u"fases"_s << u"fase"_s << true;
        QTest::newRow("plural in ces") << u"luces"_s << u"luz"_s << true;
        QTest::newRow("gender") << u"agudo"_s << u"aguda"_s << true;
        QTest::newRow("always in s") << u"mitosis"_s << u"mitosis"_s << true;
        QTest::newRow("other words") << u"arteria"_s << u"arterial"_s << false;
    }
    void sharesStems()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(bool, isSame);
        QCOMPARE(wordStem(a) == wordStem(b), isSame);
    }

    void knowsTypos_data()
    {
        QTest::addColumn<QString>("said");
        QTest::addColumn<QString>("meant");
        QTest::addColumn<bool>("isTypo");

        QTest::newRow("a letter too few") << u"mitocndria"_s << u"mitocondria"_s << true;
        QTest::newRow("a letter too many") << u"neumoniia"_s << u"neumonia"_s << true;
        QTest::newRow("neighbours swapped") << u"memrbana"_s << u"membrana"_s << true;
        QTest::newRow("another letter") << u"diabetis"_s << u"diabetes"_s << true;
        QTest::newRow("as it sounds") << u"emoglovina"_s << u"hemoglobina"_s << true;
        QTest::newRow("two, in a long word") << u"insufiencia"_s << u"insuficiencia"_s << true;
        QTest::newRow("two, in a short word") << u"mitosis"_s << u"meiosis"_s << false;
        QTest::newRow("too short") << u"gato"_s << u"gota"_s << false;
        QTest::newRow("hiper is not hipo") << u"hipertiroidismo"_s << u"hipotiroidismo"_s << false;
        QTest::newRow("itis is not osis") << u"artritis"_s << u"artrosis"_s << false;
        QTest::newRow("blasto is not clasto") << u"osteoblasto"_s << u"osteoclasto"_s << false;
        QTest::newRow("another first letter") << u"uremias"_s << u"anemias"_s << false;
    }
    void knowsTypos()
    {
        QFETCH(QString, said);
        QFETCH(QString, meant);
        QFETCH(bool, isTypo);
        QCOMPARE(isLikelyTypo(said, meant), isTypo);
        QCOMPARE(isLikelyTypo(meant, said), isTypo);
    }

    void knowsSlips()
    {
        QVERIFY(isSlipOf(u"pcho"_s, u"pecho"_s));
        QVERIFY(isSlipOf(u"pehco"_s, u"pecho"_s));
        QVERIFY(isSlipOf(u"kiero"_s, u"quiero"_s));
        QVERIFY(!isSlipOf(u"hecho"_s, u"pecho"_s));
        QVERIFY(!isSlipOf(u"techo"_s, u"pecho"_s));
        QVERIFY(!isSlipOf(u"so"_s, u"son"_s));
    }

    void knowsNumbers()
    {
        QCOMPARE(spokenNumber(u"5"_s), 5);
        QCOMPARE(spokenNumber(u"cinco"_s), 5);
        QCOMPARE(spokenNumber(u"tercer"_s), 3);
        QCOMPARE(spokenNumber(u"0"_s), 0);
        QCOMPARE(spokenNumber(u"99999999999"_s), 0);
        QCOMPARE(spokenNumber(u"mitosis"_s), 0);
    }

    void knowsWordsWithoutTopic()
    {
        QVERIFY(isCommonWord(u"sobre"_s));
        QVERIFY(!isCommonWord(u"mitosis"_s));
        QVERIFY(isEnglishWord(u"the"_s));
        QVERIFY(!isEnglishWord(u"la"_s));
    }
};

QTEST_APPLESS_MAIN(SpanishWordsTest)
#include "SpanishWordsTest.moc"
