#include "PlainSpanish.h"

#include "FoldedText.h"

#include <QTest>

using namespace Qt::StringLiterals;

class PlainSpanishTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folds()
    {
        QCOMPARE(foldedText(u"¿Qué es  la MITOSIS?"_s), u"que es la mitosis"_s);
        QCOMPARE(foldedText(u"niño, pingüino"_s), u"nino pinguino"_s);
        QVERIFY(holdsWords(u"que es la mitosis"_s, u"la mitosis"_s));
        QVERIFY(!holdsWords(u"que es la mitosis"_s, u"mito"_s));
    }

    void knowsWhereWordsStand()
    {
        const QString text = u"¿Qué es  la célula?"_s;
        const QList<TextWord> words = textWords(text);
        QCOMPARE(foldedWords(words), (QStringList{u"que"_s, u"es"_s, u"la"_s, u"celula"_s}));
        QCOMPARE(text.sliced(words.last().start, words.last().end - words.last().start),
                 u"célula"_s);
        QVERIFY(textWords(u"¿?..."_s).isEmpty());
    }

    void keepsOneLine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");

        QTest::newRow("line ends") << u"a\r\nb\u2028c\td"_s << u"a b c d"_s;
        QTest::newRow("controls") << u"a\u001b[31mb\u202ec\u0000d"_s << u"a[31mbcd"_s;
        QTest::newRow("bold") << u"**a** ****b"_s << u"a b"_s;
        QTest::newRow("bold that removing bold makes") << u"*****a"_s << u"*a"_s;
        QTest::newRow("fits") << QString(120, u'a') << QString(120, u'a');
        QTest::newRow("long") << QString(121, u'a') << QString(120, u'a') + u'…';
        QTest::newRow("a pair at the end")
            << QString(119, u'a') + u"🫀🫀"_s << QString(119, u'a') + u'…';
        QTest::newRow("huge") << QString(1'000'000, u'b') << QString(120, u'b') + u'…';
    }
    void keepsOneLine()
    {
        QFETCH(QString, text);
        QFETCH(QString, line);
        QCOMPARE(inlineText(text), line);
    }

    void findsTheTopic_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("topic");

        QTest::newRow("question") << u" ¿Qué es la mitosis? "_s << u"Qué es la mitosis"_s;
        QTest::newRow("heading") << u"## Mitosis."_s << u"Mitosis"_s;
        QTest::newRow("item") << u"- mitosis:"_s << u"mitosis"_s;
        QTest::newRow("marks only") << u"¿?...**"_s << u""_s;
    }
    void findsTheTopic()
    {
        QFETCH(QString, text);
        QFETCH(QString, topic);
        QCOMPARE(topicText(text), topic);
    }

    void joins_data()
    {
        QTest::addColumn<QStringList>("parts");
        QTest::addColumn<QString>("text");

        QTest::newRow("none") << QStringList{} << u""_s;
        QTest::newRow("one") << QStringList{u"a"_s} << u"a"_s;
        QTest::newRow("two") << QStringList{u"a"_s, u"b"_s} << u"a y b"_s;
        QTest::newRow("three") << QStringList{u"a"_s, u"b"_s, u"c"_s} << u"a, b y c"_s;
        QTest::newRow("before i") << QStringList{u"a"_s, u"Inmunología"_s} << u"a e Inmunología"_s;
        QTest::newRow("before hi in bold")
            << QStringList{u"a"_s, u"**Histología**"_s} << u"a e **Histología**"_s;
        QTest::newRow("before hie") << QStringList{u"a"_s, u"hierro"_s} << u"a y hierro"_s;
    }
    void joins()
    {
        QFETCH(QStringList, parts);
        QFETCH(QString, text);
        QCOMPARE(spanishList(parts), text);
    }
};

QTEST_APPLESS_MAIN(PlainSpanishTest)
#include "PlainSpanishTest.moc"
