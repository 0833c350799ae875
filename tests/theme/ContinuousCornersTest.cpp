#include "ContinuousCorners.h"

#include <QTest>

#include <array>
#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

class ContinuousCornersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysInsideAndTouchesEveryEdge_data();
    void staysInsideAndTouchesEveryEdge();
    void isTheSameFromEverySide();
    void differsFromACircularCorner();
    void keepsTheCircleInTheMiddleOfTheCorner();
    void curvatureHasNoJump();
    void capsuleHasRoundEnds();
    void withoutRadiusIsARectangle_data();
    void withoutRadiusIsARectangle();
};

namespace {

/// Curvature of a cubic Bézier curve at `t`.
double curvature(const std::array<QPointF, 4> &p, double t)
{
    const QPointF a = p.at(1) - p.at(0);
    const QPointF b = p.at(2) - p.at(1);
    const QPointF c = p.at(3) - p.at(2);
    const QPointF first = 3 * ((1 - t) * (1 - t) * a + 2 * t * (1 - t) * b + t * t * c);
    const QPointF second = 6 * ((1 - t) * (b - a) + t * (c - b));
    const double speed = std::hypot(first.x(), first.y());
    return (first.x() * second.y() - first.y() * second.x()) / (speed * speed * speed);
}

/// The three curves of the first corner of `path`.
std::array<std::array<QPointF, 4>, 3> firstCorner(const QPainterPath &path)
{
    std::array<std::array<QPointF, 4>, 3> curves;
    for (int curve = 0; curve < 3; ++curve) {
        for (int point = 0; point < 4; ++point)
            curves.at(curve).at(point) = path.elementAt(3 * curve + point);
    }
    return curves;
}

} // namespace

void ContinuousCornersTest::staysInsideAndTouchesEveryEdge_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("radius");

    QTest::newRow("card") << QRectF(0, 0, 250, 104) << 15.0;
    QTest::newRow("tile") << QRectF(3, 5, 37, 37) << 10.0;
    QTest::newRow("off the grid") << QRectF(0.25, 0.75, 100.5, 60.25) << 18.0;
    QTest::newRow("edges shorter than the reach") << QRectF(0, 0, 50, 45) << 20.0;
    QTest::newRow("capsule") << QRectF(0, 0, 90, 26) << 13.0;
    QTest::newRow("circle") << QRectF(0, 0, 18, 18) << 9.0;
    QTest::newRow("radius too large") << QRectF(0, 0, 40, 20) << 200.0;
    QTest::newRow("tall") << QRectF(0, 0, 12, 20000) << 12.0;
}

void ContinuousCornersTest::staysInsideAndTouchesEveryEdge()
{
    QFETCH(QRectF, rect);
    QFETCH(double, radius);

    const QRectF bounds = continuousRoundedPath(rect, radius).controlPointRect();
    constexpr double precision = 1e-6;
    QVERIFY(std::abs(bounds.left() - rect.left()) < precision);
    QVERIFY(std::abs(bounds.top() - rect.top()) < precision);
    QVERIFY(std::abs(bounds.right() - rect.right()) < precision);
    QVERIFY(std::abs(bounds.bottom() - rect.bottom()) < precision);
}

void ContinuousCornersTest::isTheSameFromEverySide()
{
    const QRectF rect(0, 0, 60, 40);
    const auto path = continuousRoundedPath(rect, 12);
    for (double x = 0.5; x < 30; x += 1) {
        for (double y = 0.5; y < 20; y += 1) {
            const bool inside = path.contains({x, y});
            QCOMPARE(path.contains({60 - x, y}), inside);
            QCOMPARE(path.contains({x, 40 - y}), inside);
            QCOMPARE(path.contains({60 - x, 40 - y}), inside);
        }
    }
}

void ContinuousCornersTest::differsFromACircularCorner()
{
    const QRectF rect(0, 0, 200, 200);
    QPainterPath circular;
    circular.addRoundedRect(rect, 40, 40);
    const auto continuous = continuousRoundedPath(rect, 40);
    // It leaves the edge earlier: beyond the circle's end there is already a gap.
    QVERIFY(circular.contains(QPointF(41, 0.05)));
    QVERIFY(!continuous.contains(QPointF(41, 0.05)));
    QVERIFY(continuousCornerReach() > 1.4);
    QVERIFY(continuousCornerReach() < 1.7);
    QVERIFY(continuous.contains(QPointF(40 * continuousCornerReach() + 1, 0.05)));
}

void ContinuousCornersTest::keepsTheCircleInTheMiddleOfTheCorner()
{
    const double radius = 40;
    const auto arc = firstCorner(continuousRoundedPath({0, 0, 300, 300}, radius)).at(1);
    for (const QPointF &end : {arc.at(0), arc.at(3)}) {
        const QPointF fromCentre = end - QPointF(radius, radius);
        QVERIFY(std::abs(std::hypot(fromCentre.x(), fromCentre.y()) - radius) < 1e-6);
    }
    for (const double t : {0.0, 0.5, 1.0})
        QVERIFY(std::abs(curvature(arc, t) * radius - 1) < 0.01);
}

void ContinuousCornersTest::curvatureHasNoJump()
{
    const double radius = 40;
    const auto corner = firstCorner(continuousRoundedPath({0, 0, 300, 300}, radius));
    QVERIFY(std::abs(curvature(corner.at(0), 0)) < 1e-9);
    QVERIFY(std::abs(curvature(corner.at(0), 1) * radius - 1) < 1e-6);
    QVERIFY(std::abs(curvature(corner.at(2), 0) * radius - 1) < 1e-6);
    QVERIFY(std::abs(curvature(corner.at(2), 1)) < 1e-9);
    // Between its ends it passes the circle's by little.
    for (double t = 0; t <= 1; t += 0.05) {
        const double here = curvature(corner.at(0), t) * radius;
        QVERIFY2(here > -1e-9 && here < 1.25, qPrintable(QString::number(here)));
    }
}

void ContinuousCornersTest::capsuleHasRoundEnds()
{
    const auto path = continuousRoundedPath({0, 0, 200, 40}, 20);
    // On the short sides there is no room for a transition: the ends are on the circle.
    for (const double degrees : {0.0, 10.0, 20.0, 40.0}) {
        const double angle = degrees * std::numbers::pi / 180;
        const QPointF direction(-std::cos(angle), -std::sin(angle));
        QVERIFY(path.contains(QPointF(20, 20) + 19.95 * direction));
        QVERIFY(!path.contains(QPointF(20, 20) + 20.05 * direction));
    }
}

void ContinuousCornersTest::withoutRadiusIsARectangle_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("radius");

    QTest::newRow("no radius") << QRectF(0, 0, 10, 10) << 0.0;
    QTest::newRow("negative radius") << QRectF(0, 0, 10, 10) << -4.0;
    QTest::newRow("not a number") << QRectF(0, 0, 10, 10) << qQNaN();
    QTest::newRow("no height") << QRectF(0, 0, 10, 0) << 4.0;
}

void ContinuousCornersTest::withoutRadiusIsARectangle()
{
    QFETCH(QRectF, rect);
    QFETCH(double, radius);

    QPainterPath plain;
    plain.addRect(rect);
    QCOMPARE(continuousRoundedPath(rect, radius), plain);
}

QTEST_APPLESS_MAIN(ContinuousCornersTest)
#include "ContinuousCornersTest.moc"
