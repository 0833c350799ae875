#include "ReadableFormula.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ReadableFormulaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesFormulasOnOneLine_data()
    {
        QTest::addColumn<QString>("latex");
        QTest::addColumn<QString>("text");
        const auto row = [](const QString &latex, const QString &text) {
            QTest::newRow(qUtf8Printable(latex)) << latex << text;
        };
        row(u"\\frac{a}{b}"_s, u"a/b"_s);
        row(u"\\dfrac{a + b}{2c}"_s, u"(a + b)/2c"_s);
        row(u"\\frac12"_s, u"1/2"_s);
        row(u"\\frac{\\frac{a}{b}}{c}"_s, u"(a/b)/c"_s);
        row(u"H_2O"_s, u"H₂O"_s);
        row(u"C_6H_{12}O_6"_s, u"C₆H₁₂O₆"_s);
        row(u"Ca^{2+} + HCO_3^-"_s, u"Ca²⁺ + HCO₃⁻"_s);
        row(u"A \\rightarrow B \\to C"_s, u"A → B → C"_s);
        row(u"\\text{Gasto} = FC \\times VS"_s, u"Gasto = FC × VS"_s);
        row(u"pH \\leq 7{,}35"_s, u"pH ≤ 7,35"_s);
        row(u"\\alpha\\beta \\geq \\mu"_s, u"αβ ≥ μ"_s);
        row(u"37\\,^\\circ\\text{C}"_s, u"37 °C"_s);
        row(u"\\sqrt{x} + \\sqrt[3]{a+b}"_s, u"√x + ³√(a+b)"_s);
        row(u"\\left( \\frac{1}{2} \\right)"_s, u"( 1/2 )"_s);
        row(u"50\\%"_s, u"50%"_s);
        row(u"K_{eq} e^{a/b}"_s, u"K_eq e^(a/b)"_s);
        row(u"\\ce{2H2O -> 2H2 + O2}"_s, u"2H₂O → 2H₂ + O₂"_s);
        row(u"\\ce{Ca^2+}"_s, u"Ca²⁺"_s);
        row(u"\\begin{aligned} a &= b \\\\ c &= d \\end{aligned}"_s, u"a = b c = d"_s);
        row(u"\\nosequé{x}"_s, u"nosequéx"_s);
        row(u"\\frac{a"_s, u"a/"_s);
        row(u"}}}"_s, u""_s);
        row(u"\\"_s, u""_s);
    }
    void writesFormulasOnOneLine()
    {
        QFETCH(QString, latex);
        QFETCH(QString, text);
        QCOMPARE(readableFormula(latex), text);
    }

    void boundsItsDepth()
    {
        const QString deep = u"\\frac{"_s.repeated(50'000);
        QVERIFY(!readableFormula(deep).isEmpty());
        QVERIFY(!readableFormula(u"\\frac"_s.repeated(50'000)).isEmpty());
        QVERIFY(!readableFormula(u"{x"_s.repeated(20'000) + u"}"_s.repeated(20'000)).isEmpty());
    }
};

QTEST_APPLESS_MAIN(ReadableFormulaTest)
#include "ReadableFormulaTest.moc"
