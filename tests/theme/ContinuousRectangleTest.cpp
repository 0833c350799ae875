#include "ContinuousRectangle.h"

#include "ContinuousCorners.h"

#include <QPainter>
#include <QPropertyAnimation>
#include <QQuickWindow>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

class ContinuousRectangleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksLikeItsPath_data();
    void looksLikeItsPath();
    void followsItsSize();
    void dashesLeaveGaps();
    void clearPaintsNothing();
    void comesBackAfterItWasHidden();
    void colorsCanBeAnimated();
};

namespace {

/// A window with one rectangle in it.
struct Stage
{
    explicit Stage(QSize size)
    {
        window.setColor(Qt::white);
        window.resize(size);
        rectangle.setParentItem(window.contentItem());
    }

    QImage grab()
    {
        window.show();
        return window.grabWindow().convertToFormat(QImage::Format_RGB32);
    }

    QQuickWindow window;
    ContinuousRectangle rectangle;
};

/// The same rectangle, painted in one piece.
QImage painted(QSize size, const ContinuousRectangle &rectangle, double ratio)
{
    QImage image(size * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rectangle.position());
    const QRectF rect({}, rectangle.size());
    painter.fillPath(continuousRoundedPath(rect, rectangle.radius()), rectangle.color());
    if (rectangle.borderWidth() > 0) {
        const double inset = rectangle.borderWidth() / 2;
        painter.strokePath(continuousRoundedPath(rect.adjusted(inset, inset, -inset, -inset),
                                                 rectangle.radius() - inset),
                           QPen(rectangle.borderColor(), rectangle.borderWidth(), Qt::SolidLine,
                                Qt::FlatCap, Qt::MiterJoin));
    }
    return image;
}

int largestDifference(const QImage &left, const QImage &right)
{
    int largest = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb a = left.pixel(x, y);
            const QRgb b = right.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(a) - qRed(b)),
                                std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    }
    return largest;
}

} // namespace

void ContinuousRectangleTest::looksLikeItsPath_data()
{
    QTest::addColumn<QRectF>("geometry");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("borderWidth");

    const QColor soft = QColor::fromRgbF(0.08F, 0.43F, 0.32F, 0.3F);
    QTest::newRow("card") << QRectF(8, 6, 250, 104) << 15.0 << soft << 1.0;
    QTest::newRow("bubble") << QRectF(2, 2, 280, 140) << 18.0 << QColor(Qt::black) << 0.0;
    QTest::newRow("tile") << QRectF(10, 10, 27, 27) << 8.0 << soft << 0.0;
    QTest::newRow("capsule") << QRectF(10, 10, 93, 26) << 13.0 << soft << 1.0;
    QTest::newRow("dot") << QRectF(10, 10, 7, 7) << 3.5 << QColor(Qt::red) << 0.0;
    QTest::newRow("narrow") << QRectF(10, 10, 20, 130) << 10.0 << QColor(Qt::black) << 0.0;
    QTest::newRow("exactly its corners") << QRectF(0, 0, 52, 52) << 16.0 << soft << 1.0;
    QTest::newRow("square corners") << QRectF(3, 3, 100, 50) << 0.0 << soft << 2.0;
}

void ContinuousRectangleTest::looksLikeItsPath()
{
    QFETCH(QRectF, geometry);
    QFETCH(double, radius);
    QFETCH(QColor, color);
    QFETCH(double, borderWidth);

    const QSize size(300, 150);
    Stage stage(size);
    stage.rectangle.setPosition(geometry.topLeft());
    stage.rectangle.setSize(geometry.size());
    stage.rectangle.setRadius(radius);
    stage.rectangle.setColor(color);
    stage.rectangle.setBorderColor(QColor::fromRgbF(0, 0, 0, 0.5F));
    stage.rectangle.setBorderWidth(borderWidth);
    const QImage shown = stage.grab();
    const double ratio = stage.window.effectiveDevicePixelRatio();
    QCOMPARE(shown.size(), size * ratio);
    // Blending in two steps rounds twice.
    const int difference = largestDifference(shown, painted(size, stage.rectangle, ratio));
    QVERIFY2(difference <= 3, qPrintable(QString::number(difference)));
}

void ContinuousRectangleTest::followsItsSize()
{
    Stage stage({300, 150});
    stage.rectangle.setRadius(18);
    stage.rectangle.setColor(Qt::black);
    for (const QSizeF size :
         {QSizeF(30, 30), QSizeF(250, 120), QSizeF(60, 140), QSizeF(250, 120)}) {
        stage.rectangle.setSize(size);
        const double ratio = stage.window.effectiveDevicePixelRatio();
        const QImage expected = painted({300, 150}, stage.rectangle, ratio);
        QVERIFY(largestDifference(stage.grab(), expected) <= 3);
    }
}

void ContinuousRectangleTest::dashesLeaveGaps()
{
    Stage stage({300, 150});
    stage.rectangle.setSize({300, 150});
    stage.rectangle.setRadius(22);
    stage.rectangle.setBorderWidth(2);
    stage.rectangle.setBorderColor(Qt::black);
    stage.rectangle.setDashPattern({9, 7});
    const QImage shown = stage.grab();
    const double ratio = stage.window.effectiveDevicePixelRatio();
    // Along the straight part of the top edge: runs of 9 points drawn, 7 left out.
    QList<int> runs;
    bool drawn = false;
    int start = 0;
    for (int x = qRound(60 * ratio); x < qRound(240 * ratio); ++x) {
        const bool here = qGray(shown.pixel(x, qRound(ratio))) < 128;
        if (here != drawn) {
            runs.append(x - start);
            start = x;
            drawn = here;
        }
    }
    QVERIFY(runs.size() > 10);
    // The first two begin before what is looked at.
    for (qsizetype i = 3; i < runs.size(); ++i) {
        const double length = runs.at(i) / ratio;
        QVERIFY2(std::abs(length - 9) <= 1 || std::abs(length - 7) <= 1,
                 qPrintable(QString::number(length)));
        const double period = (runs.at(i) + runs.at(i - 1)) / ratio;
        QVERIFY2(std::abs(period - 16) <= 1, qPrintable(QString::number(period)));
    }
}

void ContinuousRectangleTest::clearPaintsNothing()
{
    Stage stage({60, 60});
    stage.rectangle.setSize({50, 50});
    stage.rectangle.setRadius(9);
    stage.rectangle.setColor(Qt::black);
    QVERIFY(stage.grab().pixelColor(25, 25) == QColor(Qt::black));
    stage.rectangle.setColor(Qt::transparent);
    QImage white(stage.grab());
    white.fill(Qt::white);
    QCOMPARE(stage.grab(), white);
}

void ContinuousRectangleTest::comesBackAfterItWasHidden()
{
    Stage stage({60, 60});
    stage.rectangle.setVisible(false);
    stage.rectangle.setSize({50, 50});
    stage.rectangle.setRadius(9);
    stage.rectangle.setColor(Qt::black);
    QImage white(stage.grab());
    white.fill(Qt::white);
    QCOMPARE(stage.grab(), white);
    stage.rectangle.setVisible(true);
    const QImage shown = stage.grab();
    QCOMPARE(shown.pixelColor(25, 25), QColor(Qt::black));
    stage.rectangle.setVisible(false);
    QCOMPARE(stage.grab(), white);
    stage.rectangle.setVisible(true);
    QCOMPARE(stage.grab(), shown);
}

void ContinuousRectangleTest::colorsCanBeAnimated()
{
    Stage stage({60, 60});
    stage.rectangle.setSize({50, 50});
    stage.rectangle.setColor(Qt::white);
    stage.grab();
    QPropertyAnimation animation(&stage.rectangle, "color");
    animation.setDuration(60);
    animation.setEndValue(QColor(Qt::red));
    animation.start();
    QTRY_COMPARE(animation.state(), QAbstractAnimation::Stopped);
    QCOMPARE(stage.grab().pixelColor(25, 25), QColor(Qt::red));
}

QTEST_MAIN(ContinuousRectangleTest)
#include "ContinuousRectangleTest.moc"
