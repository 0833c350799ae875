#include "FrameThrottle.h"

#include <QSignalSpy>
#include <QTest>

class FrameThrottleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDueAtOnceAfterARest()
    {
        FrameThrottle throttle;
        const QSignalSpy due(&throttle, &FrameThrottle::due);
        throttle.request();
        QCOMPARE(due.size(), 1);
    }

    void isDueOnceForAllThatAsksWithinAFrame()
    {
        FrameThrottle throttle;
        const QSignalSpy due(&throttle, &FrameThrottle::due);
        throttle.request();
        for (int i = 0; i < 50; ++i)
            throttle.request();
        QCOMPARE(due.size(), 1);
        QTRY_COMPARE(throttle.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 2);
    }

    void isDueWithEverySecondFrameAtMost()
    {
        FrameThrottle throttle;
        const QSignalSpy due(&throttle, &FrameThrottle::due);
        throttle.request();
        qsizetype expected = 1;
        for (int frame = 1; frame <= 20; ++frame) {
            throttle.request();
            throttle.setCurrentTime(16 * frame);
            expected += frame % 2 == 0 ? 1 : 0;
            QCOMPARE(due.size(), expected);
        }
    }

    void isNotDueForWhatCameWithAnotherFrame()
    {
        FrameThrottle throttle;
        const QSignalSpy due(&throttle, &FrameThrottle::due);
        throttle.request();
        throttle.request();
        throttle.setCurrentTime(16);
        throttle.markServed();
        throttle.request();
        throttle.setCurrentTime(32);
        QCOMPARE(due.size(), 1);
        throttle.setCurrentTime(48);
        QCOMPARE(due.size(), 2);
        throttle.request();
        throttle.markServed();
        throttle.setCurrentTime(80);
        QCOMPARE(due.size(), 2);
        QCOMPARE(throttle.state(), QAbstractAnimation::Stopped);
    }

    void mayBeAskedAgainWhenItIsDue()
    {
        FrameThrottle throttle;
        int times = 0;
        connect(&throttle, &FrameThrottle::due, &throttle, [&] {
            if (++times < 3)
                throttle.request();
        });
        throttle.request();
        QCOMPARE(times, 1);
        QTRY_COMPARE(times, 3);
    }

    void restsWhenNobodyAsks()
    {
        FrameThrottle throttle;
        const QSignalSpy due(&throttle, &FrameThrottle::due);
        throttle.request();
        QTRY_COMPARE(throttle.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 1);
        throttle.request();
        QCOMPARE(due.size(), 2);
    }
};

QTEST_GUILESS_MAIN(FrameThrottleTest)
#include "FrameThrottleTest.moc"
