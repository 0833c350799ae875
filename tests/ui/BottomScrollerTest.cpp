#include "BottomScroller.h"

#include <QElapsedTimer>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>

#include <memory>
#include <utility>

namespace {

/// A pane of 100 points and the last item of what it scrolls, 1 point high.
struct Scene
{
    Scene()
    {
        pane.setParentItem(window.contentItem());
        pane.setHeight(100);
        pane.setProperty("contentY", 0.0);
        end.setParentItem(&pane);
        end.setHeight(1);
        scroller.setParentItem(window.contentItem());
        scroller.setProperty("flickable", QVariant::fromValue(&pane));
        scroller.setProperty("end", QVariant::fromValue(&end));
        window.resize(100, 100);
        window.show();
    }

    double contentY() const { return pane.property("contentY").toDouble(); }

    QQuickWindow window;
    QQuickItem pane;
    QQuickItem end;
    BottomScroller scroller;
};

/// Waits for a scroll and holds it where it begins.
void pauseAtTheBeginning(QVariantAnimation &animation)
{
    QObject::connect(&animation, &QAbstractAnimation::stateChanged, &animation,
                     [&animation](QAbstractAnimation::State state) {
                         if (state == QAbstractAnimation::Running)
                             animation.pause();
                     });
    QTRY_COMPARE(animation.state(), QAbstractAnimation::Paused);
    animation.disconnect(&animation);
}

} // namespace

class BottomScrollerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsTimes()
    {
        QCOMPARE(BottomScroller::delay, 60);
        QCOMPARE(BottomScroller::duration, 180);
    }

    void bringsTheEndToTheBottom()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        QTRY_COMPARE(scene.contentY(), 400.0);
    }

    void waitsBeforeItScrolls()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        QElapsedTimer elapsed;
        elapsed.start();
        scene.scroller.scrollToBottom();
        QCOMPARE(scene.contentY(), 0.0);
        QTRY_VERIFY(scene.contentY() > 0);
        QVERIFY(elapsed.elapsed() >= BottomScroller::delay);
        QTRY_COMPARE(scene.contentY(), 400.0);
        QVERIFY(elapsed.elapsed() >= BottomScroller::delay + BottomScroller::duration);
    }

    void slowsDownTowardsTheEnd()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        auto *animation = scene.scroller.findChild<QVariantAnimation *>();
        QVERIFY(animation);
        QTRY_COMPARE(animation->state(), QAbstractAnimation::Running);
        animation->pause();
        animation->setCurrentTime(BottomScroller::duration / 2);
        QCOMPARE(scene.contentY(), 300.0);
    }

    void staysAtTheTopOfWhatFits()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.pane.setProperty("contentY", 30.0);
        scene.end.setY(50);
        scene.scroller.scrollToBottom();
        QTRY_COMPARE(scene.contentY(), 0.0);
    }

    void goesWhereTheEndIsWhenItBegins()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.scroller.scrollToBottom();
        scene.end.setY(899);
        QTRY_COMPARE(scene.contentY(), 800.0);
    }

    void followsEveryChangeOfABurst()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        for (int i = 1; i <= 40; ++i) {
            scene.end.setY(100.0 * i - 1);
            scene.scroller.scrollToBottom();
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE(scene.contentY(), 3900.0);
    }

    void isNotPutOffByLaterChanges()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        QTimer changes;
        connect(&changes, &QTimer::timeout, &scene.scroller, &BottomScroller::scrollToBottom);
        changes.start(BottomScroller::delay / 6);
        QTRY_VERIFY(scene.contentY() > 0);
    }

    void followsAChangeThatCameBeforeTheScrollOfAnother()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        // Due between the two: the first has its frame, and only the second can see the new end.
        QTimer::singleShot(BottomScroller::delay, Qt::PreciseTimer, &scene.scroller, [&scene] {
            Q_EMIT scene.window.afterAnimating();
            scene.end.setY(899);
        });
        scene.scroller.scrollToBottom();
        QTRY_COMPARE(scene.contentY(), 800.0);
    }

    void startsAnewFromWhereItIs()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        QTRY_VERIFY(scene.contentY() > 0);
        scene.end.setY(1099);
        scene.scroller.scrollToBottom();
        double last = scene.contentY();
        bool wentBack = false;
        connect(scene.scroller.findChild<QVariantAnimation *>(), &QVariantAnimation::valueChanged,
                this,
                [&] { wentBack |= scene.contentY() < std::exchange(last, scene.contentY()); });
        QTRY_COMPARE(last, 1000.0);
        QVERIFY(!wentBack);
    }

    void letsAFramePassBeforeItStartsAnew()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        auto *animation = scene.scroller.findChild<QVariantAnimation *>();
        QVERIFY(animation);
        pauseAtTheBeginning(*animation);
        QCOMPARE(scene.contentY(), 0.0);

        scene.end.setY(899);
        scene.scroller.scrollToBottom();
        bool isDue = false;
        QTimer::singleShot(BottomScroller::delay, Qt::PreciseTimer, &scene.scroller,
                           [&isDue] { isDue = true; });
        QTRY_VERIFY(isDue);
        Q_EMIT scene.window.afterAnimating();
        animation->setCurrentTime(16);
        QCOMPARE(scene.contentY(), 0.0);
        animation->setCurrentTime(32);
        QVERIFY(scene.contentY() > 0);
        animation->resume();
        QTRY_COMPARE(scene.contentY(), 800.0);
    }

    void movesFromItsFirstFrameOnUnlessItIsToStartAnew()
    {
        Scene scene;
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.end.setY(499);
        scene.scroller.scrollToBottom();
        auto *animation = scene.scroller.findChild<QVariantAnimation *>();
        QVERIFY(animation);
        pauseAtTheBeginning(*animation);
        QCOMPARE(scene.contentY(), 0.0);
        animation->setCurrentTime(16);
        QVERIFY(scene.contentY() > 0);
    }

    void outlivesWhatItScrolls()
    {
        QQuickWindow window;
        BottomScroller scroller;
        scroller.setParentItem(window.contentItem());
        auto pane = std::make_unique<QQuickItem>();
        QQuickItem end;
        end.setY(1000);
        scroller.setProperty("flickable", QVariant::fromValue(pane.get()));
        scroller.setProperty("end", QVariant::fromValue(&end));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        scroller.scrollToBottom();
        auto *animation = scroller.findChild<QVariantAnimation *>();
        QVERIFY(animation);
        QTRY_COMPARE(animation->state(), QAbstractAnimation::Running);
        pane.reset();
        QTRY_COMPARE(animation->state(), QAbstractAnimation::Stopped);
    }
};

QTEST_MAIN(BottomScrollerTest)
#include "BottomScrollerTest.moc"
