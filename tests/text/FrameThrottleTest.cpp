#include "FrameThrottle.h"

#include <QSignalSpy>
#include <QTest>

class FrameThrottleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDueAtOnceAfterARest()
    {
        FrameThrottle pace;
        const QSignalSpy due(&pace, &FrameThrottle::due);
        pace.request();
        QCOMPARE(due.size(), 1);
    }

    void isDueOnceForAllThatAsksWithinAFrame()
    {
        FrameThrottle pace;
        const QSignalSpy due(&pace, &FrameThrottle::due);
        pace.request();
        for (int i = 0; i < 50; ++i)
            pace.request();
        QCOMPARE(due.size(), 1);
        QTRY_COMPARE(pace.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 2);
    }

    void isDueWithEverySecondFrameAtMost()
    {
        FrameThrottle pace;
        const QSignalSpy due(&pace, &FrameThrottle::due);
        pace.request();
        qsizetype expected = 1;
        for (int frame = 1; frame <= 20; ++frame) {
            pace.request();
            pace.setCurrentTime(16 * frame);
            expected += frame % 2 == 0 ? 1 : 0;
            QCOMPARE(due.size(), expected);
        }
    }

    void isNotDueForWhatCameWithAnotherFrame()
    {
        FrameThrottle pace;
        const QSignalSpy due(&pace, &FrameThrottle::due);
        pace.request();
        pace.request();
        pace.setCurrentTime(16);
        pace.markServed();
        pace.request();
        pace.setCurrentTime(32);
        QCOMPARE(due.size(), 1);
        pace.setCurrentTime(48);
        QCOMPARE(due.size(), 2);
        pace.request();
        pace.markServed();
        pace.setCurrentTime(80);
        QCOMPARE(due.size(), 2);
        QCOMPARE(pace.state(), QAbstractAnimation::Stopped);
    }

    void mayBeAskedAgainWhenItIsDue()
    {
        FrameThrottle pace;
        int times = 0;
        connect(&pace, &FrameThrottle::due, &pace, [&] {
            if (++times < 3)
                pace.request();
        });
        pace.request();
        QCOMPARE(times, 1);
        QTRY_COMPARE(times, 3);
    }

    void restsWhenNobodyAsks()
    {
        FrameThrottle pace;
        const QSignalSpy due(&pace, &FrameThrottle::due);
        pace.request();
        QTRY_COMPARE(pace.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 1);
        pace.request();
        QCOMPARE(due.size(), 2);
    }
};

QTEST_GUILESS_MAIN(FrameThrottleTest)
#include "FrameThrottleTest.moc"
