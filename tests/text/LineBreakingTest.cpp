#include "LineBreaking.h"

#include "FontMetricsCache.h"

#include <QTest>
#include <QTextLayout>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {
constexpr double size = 14.5;

AttributedText plain(const QString &text)
{
    AttributedText attributed{.text = text, .size = size, .runs = {}};
    if (!text.isEmpty())
        attributed.runs.append({0, text.size(), QFont::Normal});
    return attributed;
}

// What stands between two "**" is bold.
AttributedText withBold(const QString &text)
{
    AttributedText attributed{.text = {}, .size = size, .runs = {}};
    QFont::Weight weight = QFont::Normal;
    for (const QString &piece : text.split(u"**"_s)) {
        if (!piece.isEmpty())
            attributed.runs.append({attributed.text.size(), piece.size(), weight});
        attributed.text += piece;
        weight = weight == QFont::Normal ? QFont::Bold : QFont::Normal;
    }
    return attributed;
}

QList<qsizetype> starts(const QList<TextLine> &lines)
{
    QList<qsizetype> starts;
    for (const TextLine &line : lines)
        starts.append(line.start);
    return starts;
}

// Where QTextLayout begins the lines of the whole text.
QList<qsizetype> startsByLayout(const AttributedText &text, double width)
{
    QTextLayout layout(text.text, FontMetricsCache::of(size, QFont::Normal).font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QList<QTextLayout::FormatRange> formats;
    for (const AttributedText::Run &run : text.runs) {
        QTextCharFormat format;
        format.setFont(FontMetricsCache::of(size, run.weight).font());
        formats.append({int(run.start), int(run.length), format});
    }
    layout.setFormats(formats);
    QList<qsizetype> starts;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        starts.append(line.textStart());
    }
    layout.endLayout();
    return starts;
}

double processorMilliseconds()
{
    return 1000.0 * double(std::clock()) / CLOCKS_PER_SEC;
}
} // namespace

class LineBreakingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void breaksAsQTextLayoutDoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("width");

        const QString spanish
            = u"El **síndrome coronario agudo** se presenta con dolor torácico opresivo, irradiado "
              u"al brazo izquierdo o a la mandíbula; puede ser atípico (disnea, náuseas) en "
              u"personas mayores, **diabéticas** y mujeres: pedí un electrocardiograma ya."_s;
        for (const double width : {120.0, 200.0, 321.0, 480.0, 680.0}) {
            const QByteArray suffix = ", " + QByteArray::number(width);
            QTest::newRow("sentence" + suffix) << spanish << width;
            QTest::newRow("hyphens and dashes" + suffix)
                << u"anti-inflamatorio bronco-alveolar costo-efectividad — entre 2010–2020 "_s
                       .repeated(4)
                << width;
            QTest::newRow("several spaces" + suffix)
                << u"  uno   dos    tres  cuatro     cinco   seis siete   ocho  nueve   diez"_s
                << width;
            QTest::newRow("no-break spaces" + suffix)
                << u"la dosis es de 500\u00a0mg cada 8\u00a0h por vía oral durante 10\u00a0días "_s
                       .repeated(3)
                << width;
            QTest::newRow("Cyrillic and Greek" + suffix)
                << u"острый коронарный синдром και πνευμονική εμβολή "_s.repeated(4) << width;
            QTest::newRow("Arabic" + suffix)
                << u"متلازمة الشريان التاجي الحادة تظهر بألم في الصدر "_s.repeated(4) << width;
        }
    }
    void breaksAsQTextLayoutDoes()
    {
        QFETCH(QString, text);
        QFETCH(double, width);
        const AttributedText attributed = withBold(text);
        const auto lines = breakLines(
            attributed, attributed.text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight, width);
        QCOMPARE(starts(lines), startsByLayout(attributed, width));
    }

    void coversTheTextWithinTheWidth_data()
    {
        QTest::addColumn<QString>("text");

        QTest::newRow("empty") << u""_s;
        QTest::newRow("one word") << u"palabra"_s;
        QTest::newRow("only spaces") << QString(300, u' ');
        QTest::newRow("word longer than a line") << QString(500, u'a');
        QTest::newRow("long word among short ones")
            << u"uno "_s + QString(200, u'x') + u" dos tres"_s;
        QTest::newRow("shaped in several pieces") << u"漢字 かな "_s.repeated(1000);
        QTest::newRow("emoji without spaces") << u"\U0001f600"_s.repeated(1500);
        QTest::newRow("right to left") << u"مرحبا بالعالم "_s.repeated(300);
        QTest::newRow("mixed directions") << u"dosis الجرعة 5 mg עברית fin "_s.repeated(100);
        QTest::newRow("marks by the hundred") << (u"a"_s + QString(400, QChar(0x301))).repeated(8);
        QTest::newRow("only marks") << QString(3000, QChar(0x301));
        QTest::newRow("zero-width joiners") << QString(3000, QChar(0x200d));
        QTest::newRow("line separators") << u"a\u2028b\u2028"_s.repeated(100);
        QTest::newRow("tabs") << u"a\tb\t"_s.repeated(200);
        QTest::newRow("soft hyphens")
            << u"elec\u00adtro\u00adcar\u00addio\u00adgra\u00adma "_s.repeated(30);
        QTest::newRow("direction overrides") << u"a\u202eb\u2066c\u202d"_s.repeated(200);
    }
    void coversTheTextWithinTheWidth()
    {
        QFETCH(QString, text);
        constexpr double width = 300;
        const auto lines = breakLines(plain(text), Qt::LeftToRight, width);
        QVERIFY(!lines.isEmpty());
        qsizetype end = 0;
        double bottom = 0;
        for (const TextLine &line : lines) {
            QCOMPARE(line.start, end);
            // Only after a separator at the very end is there nothing on a line.
            QVERIFY(line.length > 0 || line.start == text.size());
            QCOMPARE(line.top, bottom);
            QVERIFY(line.height > 0);
            QVERIFY2(line.width <= width + 1, qPrintable(QString::number(line.width)));
            end += line.length;
            bottom += line.height;
        }
        QCOMPARE(end, text.size());
    }

    void neverSplitsASurrogatePair()
    {
        // An odd start, so that a piece of even length would end within a pair.
        const QString text = u"x"_s + u"\U0001f600"_s.repeated(3000);
        const auto lines = breakLines(plain(text), Qt::LeftToRight, 300);
        for (const TextLine &line : lines)
            QVERIFY(!text.at(line.start).isLowSurrogate());
    }

    void breaksEndlessWordsAnywhere_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("alone") << u""_s << u""_s;
        QTest::newRow("among words") << u"palabra **otra** "_s << u" y **más** palabras"_s;
    }
    void breaksEndlessWordsAnywhere()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        constexpr double width = 300;
        const QString word = u"AVToxá-/1,"_s.repeated(1000);
        const AttributedText text = withBold(before + word + after);
        const auto lines = breakLines(text, Qt::LeftToRight, width);
        const qsizetype start = text.text.indexOf(word);
        qsizetype end = 0;
        for (const TextLine &line : lines) {
            QCOMPARE(line.start, end);
            end = line.start + line.length;
            if (line.isKerned)
                continue;
            // What was added up is what is drawn.
            const auto layout = shapedLine(text, Qt::LeftToRight, line);
            const double drawn = layout->lineAt(0).cursorToX(int(layout->text().size()));
            const bool isInWord = line.start >= start && end <= start + word.size();
            QVERIFY(std::abs(drawn - line.width) < (isInWord ? 0.1 : 8));
            if (isInWord && end < start + word.size()) {
                QVERIFY(line.width <= width);
                QVERIFY(line.width > width - 20);
            }
        }
        QCOMPARE(end, text.text.size());
        QVERIFY(std::ranges::any_of(
            lines, [&](const TextLine &line) { return line.start == start && !line.isKerned; }));
    }

    void keepsBoldRunsTogether()
    {
        const AttributedText text = withBold(u"pre**fijo** y **anti**inflamatorio"_s);
        const auto lines = breakLines(text, Qt::LeftToRight, 40);
        for (const TextLine &line : lines) {
            const QStringView rest = QStringView(text.text).sliced(line.start);
            QVERIFY(!rest.startsWith(u"fijo"));
        }
        QVERIFY(lines.size() > 2);
    }

    void takesTimeLinearInTheLength_data()
    {
        QTest::addColumn<QString>("text");

        constexpr int length = 200'000;
        QTest::newRow("a million without a blank") << QString(1'000'000, u'a');
        QTest::newRow("narrow letters") << QString(length, u'i');
        QTest::newRow("ideographs") << QString(length, u'漢');
        QTest::newRow("words") << u"palabra corta "_s.repeated(length / 14);
        QTest::newRow("marks") << (u"e"_s + QString(199, QChar(0x301))).repeated(length / 200);
        QTest::newRow("Arabic without blanks") << QString(length, u'ب');
        QTest::newRow("directions") << u"aب"_s.repeated(length / 2);
    }
    void takesTimeLinearInTheLength()
    {
        QFETCH(QString, text);
        const auto timeOf = [](const QString &text) {
            const double start = processorMilliseconds();
            const auto lines = breakLines(plain(text), Qt::LeftToRight, 680);
            return lines.size() > 1 ? processorMilliseconds() - start : 0;
        };
        const QString quarter = text.first(text.size() / 4);
        timeOf(quarter); // Fonts are loaded now.
        const double ofQuarter = timeOf(quarter);
        const double ofAll = timeOf(text);
        QVERIFY(ofQuarter > 0);
        // Four times as long; sixteen times where the time grows with the square of the length.
        QVERIFY2(ofAll <= 9 * ofQuarter,
                 qPrintable(u"%1 ms, a quarter %2 ms"_s.arg(ofAll).arg(ofQuarter)));
    }
};

QTEST_MAIN(LineBreakingTest)
#include "LineBreakingTest.moc"
