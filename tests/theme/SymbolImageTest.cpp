#include "SymbolImage.h"

#include <QFont>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

class SymbolImageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyNameHasInk_data();
    void everyNameHasInk();
    void unknownNameIsNull();
    void extentFollowsTheFontSize_data();
    void extentFollowsTheFontSize();
    void heavierSymbolsHaveMoreInk_data();
    void heavierSymbolsHaveMoreInk();
    void filledSymbolsStayAsTheyAre();
    void isPaintedInItsColor();
    void isPaintedForEachRatio();
    void isPaintedOnce();
};

namespace {

/// The sum of all alpha values, in opaque pixels.
double ink(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum;
}

QImage symbol(const QString &name, int weight = QFont::Normal, double ratio = 1)
{
    return symbolImage(name, 16, weight, Qt::black, ratio);
}

} // namespace

void SymbolImageTest::everyNameHasInk_data()
{
    QTest::addColumn<QString>("name");

    const auto names = {"arrow.left.arrow.right",
                        "arrow.right",
                        "arrow.up",
                        "arrow.up.right",
                        "book.pages",
                        "bubble.left",
                        "circle.hexagongrid.fill",
                        "circle.lefthalf.filled",
                        "figure.arms.open",
                        "figure.child",
                        "gearshape",
                        "moon",
                        "paperclip",

                        "photo.badge.plus",
                        "point.3.connected.trianglepath.dotted",
                        "questionmark.circle",
                        "shield.checkered",
                        "square.and.pencil",
                        "square.grid.3x3.fill",
                        "stethoscope",
                        "sun.max",
                        "trash",
                        "waveform.path.ecg",
                        "waveform.path.ecg.rectangle",

                        "xmark.circle.fill"};
    for (const char *name : names)
        QTest::newRow(name) << QString::fromLatin1(name);
}

void SymbolImageTest::everyNameHasInk()
{
    QFETCH(QString, name);

    QVERIFY(symbolExists(name));
    for (const double points : {8.0, 9.0, 13.0, 27.0}) {
        for (const int weight : {QFont::Normal, QFont::Medium, QFont::Bold}) {
            const QImage image = symbolImage(name, points, weight, Qt::black, 2);
            const double share = ink(image) / (image.width() * image.height());
            QVERIFY2(share > 0.05 && share < 0.85, qPrintable(QString::number(share)));
        }
    }
}

void SymbolImageTest::unknownNameIsNull()
{
    QVERIFY(!symbolExists(u"no.such.symbol"_s));
    QVERIFY(symbol(u"no.such.symbol"_s).isNull());
    QVERIFY(!symbolExists(QString()));
}

void SymbolImageTest::extentFollowsTheFontSize_data()
{
    QTest::addColumn<double>("points");
    QTest::addColumn<int>("extent");

    QTest::newRow("8") << 8.0 << 9;
    QTest::newRow("9") << 9.0 << 10;
    QTest::newRow("10.5") << 10.5 << 12;
    QTest::newRow("13") << 13.0 << 15;
    QTest::newRow("16") << 16.0 << 18;
    QTest::newRow("24") << 24.0 << 27;
    QTest::newRow("27") << 27.0 << 30;
}

void SymbolImageTest::extentFollowsTheFontSize()
{
    QFETCH(double, points);
    QFETCH(int, extent);

    QCOMPARE(symbolExtent(points), extent);
    const QImage image = symbolImage(u"gearshape"_s, points, QFont::Normal, Qt::black, 1.5);
    QCOMPARE(image.devicePixelRatio(), 1.5);
    QCOMPARE(image.width(), int(std::ceil(extent * 1.5)));
}

void SymbolImageTest::heavierSymbolsHaveMoreInk_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("from outlines") << u"gearshape"_s;
    QTest::newRow("from lines") << u"stethoscope"_s;
}

void SymbolImageTest::heavierSymbolsHaveMoreInk()
{
    QFETCH(QString, name);

    double last = ink(symbol(name, QFont::Normal));
    QCOMPARE(ink(symbol(name, QFont::Light)), last);
    for (const int weight : {QFont::Medium, QFont::DemiBold, QFont::Bold}) {
        const double here = ink(symbol(name, weight));
        QVERIFY2(here > last * 1.05,
                 qPrintable(u"%1: %2 after %3"_s.arg(weight).arg(here).arg(last)));
        last = here;
    }
}

void SymbolImageTest::filledSymbolsStayAsTheyAre()
{
    QCOMPARE(symbol(u"xmark.circle.fill"_s, QFont::Bold),
             symbol(u"xmark.circle.fill"_s, QFont::Normal));
}

void SymbolImageTest::isPaintedInItsColor()
{
    const QColor accent = QColor::fromRgbF(0.08F, 0.43F, 0.32F, 0.5F);
    const QImage image = symbolImage(u"square.grid.3x3.fill"_s, 32, QFont::Normal, accent, 1);
    QColor strongest = Qt::transparent;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > strongest.alpha())
                strongest = image.pixelColor(x, y);
        }
    }
    QVERIFY(std::abs(strongest.red() - accent.red()) <= 2);
    QVERIFY(std::abs(strongest.green() - accent.green()) <= 2);
    QVERIFY(std::abs(strongest.blue() - accent.blue()) <= 2);
    QVERIFY(std::abs(strongest.alpha() - accent.alpha()) <= 1);
}

void SymbolImageTest::isPaintedForEachRatio()
{
    const QImage once = symbol(u"trash"_s, QFont::Normal, 1);
    const QImage twice = symbol(u"trash"_s, QFont::Normal, 2);
    QCOMPARE(twice.size(), 2 * once.size());
    QCOMPARE(twice.deviceIndependentSize(), once.deviceIndependentSize());
    // Painted at that size, not enlarged.
    QVERIFY(twice != once.scaled(twice.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation));
    QVERIFY(std::abs(ink(twice) / ink(once) - 4) < 0.4);
}

void SymbolImageTest::isPaintedOnce()
{
    QCOMPARE(symbol(u"moon"_s).cacheKey(), symbol(u"moon"_s).cacheKey());
    QVERIFY(symbol(u"moon"_s).cacheKey() != symbol(u"moon"_s, QFont::Bold).cacheKey());
}

QTEST_GUILESS_MAIN(SymbolImageTest)
#include "SymbolImageTest.moc"
