#include "FramePace.h"

#include <QSignalSpy>
#include <QTest>

class FramePaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isDueAtOnceAfterARest()
    {
        FramePace pace;
        const QSignalSpy due(&pace, &FramePace::due);
        pace.request();
        QCOMPARE(due.size(), 1);
    }

    void isDueOnceForAllThatAsksWithinAFrame()
    {
        FramePace pace;
        const QSignalSpy due(&pace, &FramePace::due);
        pace.request();
        for (int i = 0; i < 50; ++i)
            pace.request();
        QCOMPARE(due.size(), 1);
        QTRY_COMPARE(pace.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 2);
    }

    void mayBeAskedAgainWhenItIsDue()
    {
        FramePace pace;
        int times = 0;
        connect(&pace, &FramePace::due, &pace, [&] {
            if (++times < 3)
                pace.request();
        });
        pace.request();
        QCOMPARE(times, 1);
        QTRY_COMPARE(times, 3);
    }

    void restsWhenNobodyAsks()
    {
        FramePace pace;
        const QSignalSpy due(&pace, &FramePace::due);
        pace.request();
        QTRY_COMPARE(pace.state(), QAbstractAnimation::Stopped);
        QCOMPARE(due.size(), 1);
        pace.request();
        QCOMPARE(due.size(), 2);
    }
};

QTEST_GUILESS_MAIN(FramePaceTest)
#include "FramePaceTest.moc"
