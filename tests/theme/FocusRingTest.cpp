#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

/// The ring around what has the keyboard, pixel by pixel. CTest runs it at several scale factors.
class FocusRingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEvenAndSharp_data();
    void isEvenAndSharp();
    void liesWithinWhereThereIsNoRoom();
};

namespace {

/// A window with a red button on white, which has the keyboard's ring.
struct Stage
{
    explicit Stage(QRectF geometry, double radius, bool isInside = false)
    {
        engine.addImportPath(u":/qt/qml"_s);
        QQmlComponent component(&engine);
        component.setData(R"(
            import QtQuick
            import Aulora.Theme

            PlainButton {
                id: button

                background: ContinuousRectangle {
                    radius: button.focusRadius
                    color: "red"
                }
                contentItem: Item {}
            }
        )",
                          {});
        window.setColor(Qt::white);
        window.resize(320, 200);
        button.reset(qobject_cast<QQuickItem *>(component.create()));
        if (!button)
            qFatal("%s", qPrintable(component.errorString()));
        button->setProperty("focusRadius", radius);
        button->setProperty("focusRingIsInside", isInside);
        button->setParentItem(window.contentItem());
        button->setPosition(geometry.topLeft());
        button->setSize(geometry.size());
        window.show();
        window.requestActivate();
    }

    QImage grab()
    {
        button->forceActiveFocus(Qt::TabFocusReason);
        return window.grabWindow().convertToFormat(QImage::Format_RGB32);
    }

    QQmlEngine engine;
    QQuickWindow window;
    std::unique_ptr<QQuickItem> button;
};

/// How many pixels of each colour follow one another.
struct Stretch
{
    QRgb color;
    int length;
};

/// A small button is round almost to the middle of its sides, which costs a little of the colour
/// there; half a pixel would cost half of it.
bool areAlike(QRgb left, QRgb right)
{
    constexpr int tolerance = 12;
    return std::abs(qRed(left) - qRed(right)) <= tolerance
        && std::abs(qGreen(left) - qGreen(right)) <= tolerance
        && std::abs(qBlue(left) - qBlue(right)) <= tolerance;
}

QList<Stretch> stretches(const QImage &image, QPoint from, QPoint step)
{
    QList<Stretch> found;
    for (QPoint at = from; image.rect().contains(at); at += step) {
        if (found.isEmpty() || !areAlike(found.last().color, image.pixel(at)))
            found.append({image.pixel(at), 0});
        ++found.last().length;
    }
    return found;
}

} // namespace

void FocusRingTest::isEvenAndSharp_data()
{
    QTest::addColumn<QRectF>("geometry");
    QTest::addColumn<double>("radius");

    QTest::newRow("new conversation") << QRectF(14, 79, 212, 42) << 11.0;
    QTest::newRow("clear") << QRectF(204, 135, 25, 25) << 8.0;
    QTest::newRow("send") << QRectF(250, 100, 43, 43) << 21.5;
    QTest::newRow("on half points") << QRectF(20.5, 30.5, 100, 33) << 8.0;
    QTest::newRow("anywhere") << QRectF(33.3, 41.7, 90.2, 50.6) << 9.0;
}

void FocusRingTest::isEvenAndSharp()
{
    QFETCH(QRectF, geometry);
    QFETCH(double, radius);

    Stage stage(geometry, radius);
    const QImage shown = stage.grab();
    const double ratio = stage.window.effectiveDevicePixelRatio();
    QVERIFY(stage.button->property("visualFocus").toBool());
    const QPoint middle = (geometry.center() * ratio).toPoint();
    const QList<QList<Stretch>> sides{
        stretches(shown, {0, middle.y()}, {1, 0}),
        stretches(shown, {shown.width() - 1, middle.y()}, {-1, 0}),
        stretches(shown, {middle.x(), 0}, {0, 1}),
        stretches(shown, {middle.x(), shown.height() - 1}, {0, -1}),
    };
    const int thickness = qRound(2.5 * ratio);
    const int gap = qRound(2 * ratio);
    const QRgb ringColor = sides.first().at(1).color;
    for (const auto &side : sides) {
        // Outside, ring, gap, button, and nothing between them.
        QVERIFY(side.size() >= 4);
        QVERIFY(areAlike(side.at(0).color, QColor(Qt::white).rgb()));
        QVERIFY(areAlike(side.at(1).color, ringColor));
        QCOMPARE(side.at(1).length, thickness);
        QVERIFY(areAlike(side.at(2).color, QColor(Qt::white).rgb()));
        QCOMPARE(side.at(2).length, gap);
        QVERIFY(areAlike(side.at(3).color, QColor(Qt::red).rgb()));
    }
}

void FocusRingTest::liesWithinWhereThereIsNoRoom()
{
    Stage stage({0, 100, 320, 60}, 8, true);
    const QImage shown = stage.grab();
    const double ratio = stage.window.effectiveDevicePixelRatio();
    const int middle = qRound(130 * ratio);
    for (const auto &side : {stretches(shown, {0, middle}, {1, 0}),
                             stretches(shown, {shown.width() - 1, middle}, {-1, 0})}) {
        QCOMPARE(side.size(), 5);
        QVERIFY(areAlike(side.at(0).color, QColor(Qt::red).rgb()));
        QCOMPARE(side.at(0).length, qRound(3 * ratio));
        QCOMPARE(side.at(1).length, qRound(2.5 * ratio));
    }
}

QTEST_MAIN(FocusRingTest)
#include "FocusRingTest.moc"
