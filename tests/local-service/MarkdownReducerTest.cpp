#include "MarkdownReducer.h"

#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;

static QStringList reduced(const QString &text, qsizetype pieceSize)
{
    MarkdownReducer reducer;
    QStringList lines;
    for (qsizetype at = 0; at < text.size(); at += pieceSize)
        lines += reducer.feed(text.mid(at, pieceSize));
    return lines + reducer.finish();
}

class MarkdownReducerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsWhatTheProgramShows_data()
    {
        QTest::addColumn<QString>("markdown");
        QTest::addColumn<QString>("lines");
        const auto row = [](const char *name, const QString &markdown, const QString &lines) {
            QTest::newRow(name) << markdown << lines;
        };
        row("headings", u"# Uno\n## Dos ##\n### Tres\n#### Cuatro\n###### Seis"_s,
            u"# Uno\n## Dos\n### Tres\n### Cuatro\n### Seis"_s);
        row("a heading without a blank is text", u"#Uno"_s, u"#Uno"_s);
        row("underlined headings", u"Uno\n===\n\nDos\n---\n\ntexto"_s, u"# Uno\n## Dos\ntexto"_s);
        row("bold in a heading", u"## __La__ célula"_s, u"## **La** célula"_s);
        row("paragraphs", u"Uno\nsigue.\n\nDos."_s, u"Uno sigue.\nDos."_s);
        row("hard breaks", u"Uno  \nDos\\\nTres"_s, u"Uno\nDos\nTres"_s);
        row("line ends of both kinds", u"Uno\r\n\r\n- a\r\n- b\r\n"_s, u"Uno\n- a\n- b"_s);
        row("bullets", u"* a\n+ b\n- c\n  * d\n    - e"_s, u"- a\n- b\n- c\n- d\n- e"_s);
        row("a long item", u"- uno\n  dos\ntres\n- cuatro"_s, u"- uno dos tres\n- cuatro"_s);
        row("loose items", u"* a\n\n* b\n\n  más de b\n"_s, u"- a\n- b\nmás de b"_s);
        row("numbers", u"1. a\n2) b\n   - c\n10. d"_s, u"1. a\n2. b\n- c\n10. d"_s);
        row("a list right below its paragraph", u"Causas:\n- a\n- b\nFin."_s,
            u"Causas:\n- a\n- b Fin."_s);
        row("no list", u"2.5 mg\n\n1990. Un año\n\n-5 grados\n\n*uno* dos"_s,
            u"2.5 mg\n1990. Un año\n-5 grados\nuno dos"_s);
        row("bold", u"**a** y __b__ y ***c*** y **d\ne**"_s, u"**a** y **b** y **c** y **d e**"_s);
        row("italics", u"*a* _b_ a_b_c"_s, u"a b a_b_c"_s);
        row("bold over a break", u"**a  \nb**"_s, u"**a**\n**b**"_s);
        row("asterisks that are none", u"5 * 3 y \\*\\*a\\*\\* y a**b"_s,
            u"5 * 3 y ∗∗a∗∗ y a∗∗b"_s);
        row("code in a line", u"usá `a**b` y `$x_1$` y **`c`**"_s, u"usá a∗∗b y $x_1$ y **c**"_s);
        row("code", u"Así:\n```python\nx = 1\n\n  y = x**2\n```\nFin"_s,
            u"Así:\nx = 1\n  y = x∗∗2\nFin"_s);
        row("code of three marks in a line", u"uno\n```dos``` tres"_s, u"uno dos tres"_s);
        row("code that never ends", u"~~~\n- a\n**b**"_s, u"- a\n∗∗b∗∗"_s);
        row("rules", u"a\n\n---\n\nb\n\n***\n\n- - -\n\n___\nc"_s, u"a\nb\nc"_s);
        row("quotes", u"> uno\n> dos\n\n> - tres\n\ncuatro"_s, u"uno dos\n- tres\ncuatro"_s);
        row("a quote below a paragraph", u"uno\n> dos"_s, u"uno\ndos"_s);
        row("links", u"ver [la guía](https://example.org/a_b) y <https://example.org> y [x](y)"_s,
            u"ver la guía (https://example.org/a_b) y https://example.org y x"_s);
        row("images", u"![un corte](corte.png)"_s, u"un corte"_s);
        row("entities", u"a &lt; b &amp; c &beta; &#945; &#x3b3; &nada; &#0;"_s,
            u"a < b & c β α γ &nada; \uFFFD"_s);
        row("tags", u"H<sub>2</sub>O, Ca<sup>2+</sup>, uno<br>dos <b>x</b> 3<5 y 6>2"_s,
            u"H₂O, Ca²⁺, uno\ndos x 3<5 y 6>2"_s);
        row("a table",
            u"Antes\n\n| Rasgo | **Mitosis** | Meiosis |\n|:---|:---:|---:|\n"
            "| Divisiones | 1 | __2__ |\n| Células | $2n$<br>iguales | |\n\nDespués"_s,
            u"Antes\n- Rasgo: Divisiones; **Mitosis**: 1; Meiosis: **2**\n"
            "- Rasgo: Células; **Mitosis**: 2n, iguales\nDespués"_s);
        row("a table without outer bars", u"a | b\n--- | ---\n1 | 2\ntexto"_s,
            u"- a: 1; b: 2\ntexto"_s);
        row("bars without a table", u"a | b\nc | d"_s, u"a | b c | d"_s);
        row("formulas",
            u"Da \\(\\frac{a}{b}\\), $H_2O$ y $$x^2$$. Cuesta $5 y $10.\n\n\\[\nPV = nRT\n\\]\n\n"
            "$$\n\\Delta G = -RT \\ln K_{eq}\n$$\nFin"_s,
            u"Da a/b, H₂O y x². Cuesta $5 y $10.\nPV = nRT\nΔG = -RT ln K_eq\nFin"_s);
        row("a formula that would be marks", u"$*a_1*$ y $\\text{**}b_{c*d}$"_s,
            u"*a₁* y ∗∗b_c*d"_s);
        row("symbols in text",
            u"H_2O \\rightarrow CO_2 y HCO_3^- y Ca^{2+} y 10^6 y 10^-3 y a_b y \\frac{a}{b}"_s,
            u"H₂O → CO₂ y HCO₃⁻ y Ca²⁺ y 10⁶ y 10⁻³ y a_b y a/b"_s);
        row("a path", u"C:\\nada y \\otra_cosa^x"_s, u"C:\\nada y \\otra_cosa^x"_s);
        row("nothing", u" \n\n \n"_s, u""_s);
    }
    void keepsWhatTheProgramShows()
    {
        QFETCH(QString, markdown);
        QFETCH(QString, lines);
        for (qsizetype pieceSize = 1; pieceSize <= markdown.size() + 1; ++pieceSize)
            QCOMPARE(reduced(markdown, pieceSize).join(u'\n'), lines);
    }

    void holdsALineNoLongerThanItMust()
    {
        MarkdownReducer reducer;
        QCOMPARE(reducer.feed(u"## Ciclo\n"_s), QStringList{u"## Ciclo"_s});
        QCOMPARE(reducer.feed(u"Tiene **fases"_s), QStringList());
        QCOMPARE(reducer.feed(u"**.\n"_s), QStringList());
        QCOMPARE(reducer.feed(u"\n"_s), QStringList{u"Tiene **fases**."_s});
        QCOMPARE(reducer.feed(u"- G1\n"_s), QStringList());
        QCOMPARE(reducer.feed(u"-"_s), QStringList());
        QCOMPARE(reducer.feed(u" "_s), QStringList());
        QCOMPARE(reducer.feed(u"S"_s), QStringList{u"- G1"_s});
        QCOMPARE(reducer.feed(u"\n2"_s), QStringList());
        QCOMPARE(reducer.feed(u". "_s), QStringList{u"- S"_s});
        QCOMPARE(reducer.feed(u"M\n\n|a|b|\n|-|-|\n"_s), QStringList{u"2. M"_s});
        QCOMPARE(reducer.feed(u"|1|2|\n"_s), QStringList{u"- a: 1; b: 2"_s});
        QCOMPARE(reducer.feed(u"Fin"_s), QStringList());
        QCOMPARE(reducer.finish(), QStringList{u"Fin"_s});
    }

    void takesLongTextsInTime_data()
    {
        QTest::addColumn<QString>("piece");
        for (const auto &piece :
             {u"a"_s, u"*a"_s, u"**"_s, u"["_s, u"`"_s, u"$x"_s, u"\\("_s, u"\\frac{"_s, u"|a"_s,
              u"<a "_s, u"_{"_s, u"> "_s, u"- "_s, u"&a;"_s, u"a\n"_s, u"[a](<b>)"_s, u"^1"_s})
            QTest::newRow(qUtf8Printable(piece)) << piece;
    }
    void takesLongTextsInTime()
    {
        QFETCH(QString, piece);
        constexpr qsizetype length = 100'000;
        MarkdownReducer reducer;
        for (qsizetype fed = 0; fed < length; fed += piece.size())
            reducer.feed(piece);
        // Of the processor, whatever else the machine does.
        const std::clock_t begin = std::clock();
        reducer.finish();
        const double seconds = double(std::clock() - begin) / CLOCKS_PER_SEC;
        QVERIFY2(seconds < 5, qPrintable(QString::number(seconds)));
    }
};

QTEST_APPLESS_MAIN(MarkdownReducerTest)
#include "MarkdownReducerTest.moc"
