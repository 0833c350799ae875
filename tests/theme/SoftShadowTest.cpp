#include "SoftShadow.h"

#include <QQuickWindow>
#include <QTest>

#include <algorithm>

/// The shadow under what floats, as it is painted.
class SoftShadowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fadesOutward();
    void leavesOutWhatIsBeneath();
    void isTheSameAtAnySize();
};

namespace {

constexpr int spread = 24;
constexpr int drop = 8;

/// A window with the shadow of a rectangle whose corner is at (60, 60).
struct Stage
{
    explicit Stage(QSize caster)
    {
        window.setColor(Qt::white);
        window.resize(caster + QSize(120, 120));
        shadow.setProperty("radius", 12.0);
        shadow.setProperty("spread", double(spread));
        shadow.setProperty("drop", double(drop));
        shadow.setProperty("color", QColor::fromRgbF(0, 0, 0, 0.5F));
        shadow.setPosition({60, 60});
        shadow.setSize(caster);
        shadow.setParentItem(window.contentItem());
        window.show();
        image = window.grabWindow().convertToFormat(QImage::Format_RGB32);
        image.setDevicePixelRatio(1);
    }

    int lightness(int x, int y) const { return qGray(image.pixel(x, y)); }

    QQuickWindow window;
    SoftShadow shadow;
    QImage image;
};

} // namespace

void SoftShadowTest::fadesOutward()
{
    const Stage stage({300, 200});
    // Downwards from the middle of the lower edge, to the left and up from the others'.
    int last = 0;
    for (int y = 260; y < 260 + spread + drop; ++y) {
        QVERIFY2(stage.lightness(210, y) >= last, qPrintable(QString::number(y)));
        last = stage.lightness(210, y);
    }
    QVERIFY2(stage.lightness(210, 261) < 200,
             qPrintable(QString::number(stage.lightness(210, 261))));
    QVERIFY(stage.lightness(210, 261) < stage.lightness(59, 160));
    QVERIFY(stage.lightness(59, 160) < stage.lightness(210, 59));
    QVERIFY(stage.lightness(59, 160) < 255);
    for (int x = 0; x < 420; ++x) {
        QCOMPARE(stage.lightness(x, 260 + spread + drop), 255);
        QCOMPARE(stage.lightness(x, 59 - spread), 255);
    }
    for (int y = 0; y < 320; ++y) {
        QCOMPARE(stage.lightness(59 - spread, y), 255);
        QCOMPARE(stage.lightness(360 + spread, y), 255);
    }
}

void SoftShadowTest::leavesOutWhatIsBeneath()
{
    const Stage stage({300, 200});
    for (int x = 60; x < 360; ++x)
        QCOMPARE(stage.lightness(x, 160), 255);
    for (int y = 60; y < 260; ++y)
        QCOMPARE(stage.lightness(210, y), 255);
}

void SoftShadowTest::isTheSameAtAnySize()
{
    const Stage small({150, 150});
    const Stage large({520, 430});
    // The corners, and a stretch of the edges beside them.
    for (int y = 0; y < 60 + 75; ++y) {
        for (int x = 0; x < 60 + 75; ++x)
            QVERIFY(std::abs(small.lightness(x, y) - large.lightness(x, y)) <= 1);
    }
    // And along a whole edge there is no step.
    for (int x = 60 + 75; x < 60 + 520 - 75; ++x)
        QCOMPARE(large.lightness(x, 60 + 430 + 4), large.lightness(60 + 75, 60 + 430 + 4));
}

QTEST_MAIN(SoftShadowTest)
#include "SoftShadowTest.moc"
