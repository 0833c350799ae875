#include "MarkdownBlock.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Kind = MarkdownBlock::Kind;
using Blocks = QList<MarkdownBlock>;

class MarkdownBlockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsAtLineEnds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Blocks>("blocks");

        const auto paragraph
            = [](const QString &text) { return MarkdownBlock{Kind::paragraph, text}; };
        const MarkdownBlock empty;

        QTest::newRow("empty text") << u""_s << Blocks{empty};
        QTest::newRow("CR LF") << u"Hola\r\nMundo"_s
                               << Blocks{paragraph(u"Hola"_s), paragraph(u"Mundo"_s)};
        QTest::newRow("LF") << u"Hola\nMundo"_s
                            << Blocks{paragraph(u"Hola"_s), paragraph(u"Mundo"_s)};
        QTest::newRow("lone CR") << u"Hola\rMundo"_s << Blocks{paragraph(u"Hola\rMundo"_s)};
        QTest::newRow("stray CR kept at the end") << u"Hola\r"_s << Blocks{paragraph(u"Hola\r"_s)};
        QTest::newRow("CR before CR LF")
            << u"Hola\r\r\nMundo"_s << Blocks{paragraph(u"Hola\r"_s), paragraph(u"Mundo"_s)};
        QTest::newRow("LF CR") << u"a\n\rb"_s << Blocks{paragraph(u"a"_s), paragraph(u"\rb"_s)};
        QTest::newRow("line separator is no line end")
            << u"a\u2028b"_s << Blocks{paragraph(u"a\u2028b"_s)};
        QTest::newRow("blank line")
            << u"a\n\nb"_s << Blocks{paragraph(u"a"_s), empty, paragraph(u"b"_s)};
        QTest::newRow("ends with LF") << u"a\n"_s << Blocks{paragraph(u"a"_s), empty};
        QTest::newRow("only line ends") << u"\n\r\n"_s << Blocks{empty, empty, empty};
    }
    void splitsAtLineEnds()
    {
        QFETCH(QString, text);
        QTEST(parseBlocks(text), "blocks");
    }

    void classifiesLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("text");

        QTest::newRow("empty") << u""_s << Kind::empty << u""_s;
        QTest::newRow("spaces and tabs") << u" \t \u00a0\u3000\u2009"_s << Kind::empty << u""_s;
        QTest::newRow("carriage return is no blank") << u" \r "_s << Kind::paragraph << u"\r"_s;
        QTest::newRow("zero-width space is no blank")
            << u"\u200b"_s << Kind::paragraph << u"\u200b"_s;
        QTest::newRow("heading 1") << u"# Uno"_s << Kind::heading1 << u"Uno"_s;
        QTest::newRow("heading 2") << u"## Dos"_s << Kind::heading2 << u"Dos"_s;
        QTest::newRow("heading 3") << u"### Tres"_s << Kind::heading3 << u"Tres"_s;
        QTest::newRow("trimmed first") << u"   ### Título  "_s << Kind::heading3 << u"Título"_s;
        QTest::newRow("blanks after the prefix stay")
            << u"##   Título"_s << Kind::heading2 << u"  Título"_s;
        QTest::newRow("no space") << u"#Título"_s << Kind::paragraph << u"#Título"_s;
        QTest::newRow("a no-break space is not the space")
            << u"#\u00a0Título"_s << Kind::paragraph << u"#\u00a0Título"_s;
        QTest::newRow("four signs") << u"#### x"_s << Kind::paragraph << u"#### x"_s;
        QTest::newRow("four signs alone") << u"####"_s << Kind::paragraph << u"####"_s;
        QTest::newRow("sign and blank alone") << u"# "_s << Kind::paragraph << u"#"_s;
        QTest::newRow("marked space") << u"# \u0301x"_s << Kind::paragraph << u"# \u0301x"_s;
        QTest::newRow("marked space after a dash")
            << u"- \u0301x"_s << Kind::paragraph << u"- \u0301x"_s;
        QTest::newRow("dash") << u"- item"_s << Kind::bullet << u"item"_s;
        QTest::newRow("star") << u"* item"_s << Kind::bullet << u"item"_s;
        QTest::newRow("dash without a space") << u"-item"_s << Kind::paragraph << u"-item"_s;
        QTest::newRow("other dash") << u"– item"_s << Kind::paragraph << u"– item"_s;
        QTest::newRow("bold start")
            << u"**negrita** al inicio"_s << Kind::paragraph << u"**negrita** al inicio"_s;
        QTest::newRow("bold bullet") << u"- **a** b"_s << Kind::bullet << u"**a** b"_s;
        QTest::newRow("nested prefix") << u"- # x"_s << Kind::bullet << u"# x"_s;
        QTest::newRow("numbered") << u"  1. Uno "_s << Kind::numbered << u"1. Uno"_s;
        QTest::newRow("dose") << u"3.5 mg/kg"_s << Kind::numbered << u"3.5 mg/kg"_s;
        QTest::newRow("dose in words")
            << u"Dosis: 3.5 mg"_s << Kind::paragraph << u"Dosis: 3.5 mg"_s;
        QTest::newRow("markup") << u"<img src=x> [a](b) &amp;"_s << Kind::paragraph
                                << u"<img src=x> [a](b) &amp;"_s;
        QTest::newRow("quote") << u"> cita"_s << Kind::paragraph << u"> cita"_s;
    }
    void classifiesLines()
    {
        QFETCH(QString, line);
        const MarkdownBlock block = classifyLine(line);
        QTEST(block.kind, "kind");
        QTEST(block.text, "text");
    }

    void tellsNumberedItems_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("numbered");

        QTest::newRow("item") << u"1. Uno"_s << true;
        QTest::newRow("no space after the dot") << u"12.Doce"_s << true;
        QTest::newRow("decimal") << u"2.5 mg de dosis"_s << true;
        QTest::newRow("only number and dot") << u"7."_s << true;
        QTest::newRow("many digits") << QString(1000, u'9') + u". x"_s << true;
        QTest::newRow("second dot anything") << u"1.a.b"_s << true;
        QTest::newRow("Arabic digits") << u"١٢. واحد"_s << true;
        QTest::newRow("Devanagari digit") << u"४. x"_s << true;
        QTest::newRow("digit outside the basic plane") << u"\U0001d7d9. x"_s << true;
        QTest::newRow("vulgar fraction") << u"½. x"_s << true;
        QTest::newRow("superscript") << u"². x"_s << true;
        QTest::newRow("circled") << u"①. x"_s << true;
        QTest::newRow("Roman numeral sign") << u"Ⅳ. x"_s << true;
        QTest::newRow("ideograph for three") << u"三. x"_s << true;
        QTest::newRow("marked digit") << u"1\u0301. x"_s << true;
        QTest::newRow("other ideograph") << u"山. x"_s << false;
        QTest::newRow("no dot") << u"12"_s << false;
        QTest::newRow("dot first") << u".5"_s << false;
        QTest::newRow("letters before") << u"pH 7.4"_s << false;
        QTest::newRow("parenthesis") << u"1) Uno"_s << false;
        QTest::newRow("letter") << u"a. b"_s << false;
        QTest::newRow("digit and letter") << u"1a. b"_s << false;
        QTest::newRow("space before the dot") << u"1 . b"_s << false;
        QTest::newRow("sign") << u"-1. b"_s << false;
        QTest::newRow("full-width dot") << u"1． b"_s << false;
        QTest::newRow("marked dot") << u"1.\u0301 b"_s << false;
        QTest::newRow("marked dot, then a dot") << u"1.\u0301 2. b"_s << false;
        QTest::newRow("mark alone") << u"\u0301. b"_s << false;
        QTest::newRow("lone surrogate") << QString(QChar(0xd835)) + u". b"_s << false;
        QTest::newRow("empty") << u""_s << false;
    }
    void tellsNumberedItems()
    {
        QFETCH(QString, line);
        QTEST(isNumberedItem(line), "numbered");
    }

    void takesEveryIdeographOfANumberForOne()
    {
        // All letters to which Python's unicodedata gives a numeric value.
        const QString numbers = u"㐅㒃㠪㭍一七万三九二五亖亿什仟仨伍佰億兆兩八六十千卄卅卌叁参參叄"
                                u"四壱壹幺廾廿弌弍弎弐拾捌柒漆玖百肆萬貮貳贰阡陆陌陸零"
                                u"\uf96b\uf973\uf978\uf9b2\uf9d1\uf9d3\uf9fd"
                                u"\U00020001\U00020064\U000200e2\U00020121\U0002092a\U00020983"
                                u"\U0002098c\U0002099c\U00020aea\U00020afd\U00020b19\U00022390"
                                u"\U00022998\U00023b1b\U0002626d\U0002f890"_s;
        for (qsizetype i = 0; i < numbers.size(); i += numbers[i].isHighSurrogate() ? 2 : 1) {
            const QString number = numbers.sliced(i, numbers[i].isHighSurrogate() ? 2 : 1);
            QVERIFY2(isNumberedItem(number + u". x"_s), qPrintable(number));
        }
    }

    void givesOneBlockPerLineOfALongText()
    {
        constexpr int lines = 100'000;
        const QString text = u"1. línea\n"_s.repeated(lines);
        QCOMPARE(parseBlocks(text).size(), lines + 1);
    }
};

QTEST_APPLESS_MAIN(MarkdownBlockTest)
#include "MarkdownBlockTest.moc"
