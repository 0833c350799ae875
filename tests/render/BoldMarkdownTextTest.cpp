#include "BoldMarkdownText.h"

#include <QTest>

using namespace Qt::StringLiterals;

struct Piece
{
    QString text;
    QFont::Weight weight;

    bool operator==(const Piece &) const = default;
};
using Pieces = QList<Piece>;

class BoldMarkdownTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAtMarkers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Pieces>("pieces");

        constexpr auto base = QFont::Normal;
        constexpr auto bold = QFont::Bold;
        QTest::newRow("empty") << u""_s << Pieces{};
        QTest::newRow("no marker") << u"texto"_s << Pieces{{u"texto"_s, base}};
        QTest::newRow("bold first") << u"**Diagnóstico:** texto"_s
                                    << Pieces{{u"Diagnóstico:"_s, bold}, {u" texto"_s, base}};
        QTest::newRow("not closed")
            << u"Texto **sin cierre"_s << Pieces{{u"Texto "_s, base}, {u"sin cierre"_s, bold}};
        QTest::newRow("short not closed") << u"a **b"_s << Pieces{{u"a "_s, base}, {u"b"_s, bold}};
        QTest::newRow("marker alone") << u"**"_s << Pieces{};
        QTest::newRow("two markers") << u"****"_s << Pieces{};
        QTest::newRow("one bold space") << u"** **"_s << Pieces{{u" "_s, bold}};
        QTest::newRow("toggled twice") << u"a****b"_s << Pieces{{u"a"_s, base}, {u"b"_s, base}};
        QTest::newRow("toggled three times")
            << u"a******b"_s << Pieces{{u"a"_s, base}, {u"b"_s, bold}};
        QTest::newRow("single star") << u"2 * 3 *x*"_s << Pieces{{u"2 * 3 *x*"_s, base}};
        QTest::newRow("three stars") << u"***x***"_s << Pieces{{u"*x"_s, bold}, {u"*"_s, base}};
        QTest::newRow("ends with a marker")
            << u"a **b**"_s << Pieces{{u"a "_s, base}, {u"b"_s, bold}};
        QTest::newRow("accents and other scripts")
            << u"ñandú **áéí\U0001f600漢** fin"_s
            << Pieces{{u"ñandú "_s, base}, {u"áéí\U0001f600漢"_s, bold}, {u" fin"_s, base}};
        QTest::newRow("markup") << u"<b>x</b> **&amp;**"_s
                                << Pieces{{u"<b>x</b> "_s, base}, {u"&amp;"_s, bold}};
    }
    void cutsAtMarkers()
    {
        QFETCH(QString, text);
        const AttributedText attributed = makeAttributedText(text, 14.5, QFont::Normal);
        Pieces pieces;
        qsizetype end = 0;
        for (const AttributedText::Run &run : attributed.runs) {
            QCOMPARE(run.start, end);
            end += run.length;
            pieces.append({attributed.text.sliced(run.start, run.length), run.weight});
        }
        QCOMPARE(end, attributed.text.size());
        QCOMPARE(attributed.size, 14.5);
        QTEST(pieces, "pieces");
    }

    void keepsTheBaseWeight_data()
    {
        QTest::addColumn<QFont::Weight>("base");
        QTest::newRow("regular") << QFont::Normal;
        QTest::newRow("semibold") << QFont::DemiBold;
        QTest::newRow("bold") << QFont::Bold;
    }
    void keepsTheBaseWeight()
    {
        QFETCH(QFont::Weight, base);
        const AttributedText attributed = makeAttributedText(u"a**b**c"_s, 19, base);
        QCOMPARE(attributed.runs.size(), 3);
        QCOMPARE(attributed.runs.at(0).weight, base);
        QCOMPARE(attributed.runs.at(1).weight, QFont::Bold);
        QCOMPARE(attributed.runs.at(2).weight, base);
    }
};

QTEST_APPLESS_MAIN(BoldMarkdownTextTest)
#include "BoldMarkdownTextTest.moc"
