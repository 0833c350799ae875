#include "Delay.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

class DelayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void triggersOnce()
    {
        Delay delay;
        delay.setInterval(30);
        const QSignalSpy triggered(&delay, &Delay::triggered);
        const QSignalSpy running(&delay, &Delay::runningChanged);
        QVERIFY(!delay.isRunning());
        QElapsedTimer elapsed;
        elapsed.start();
        delay.restart();
        QVERIFY(delay.isRunning());
        QTRY_VERIFY(!delay.isRunning());
        QVERIFY(elapsed.elapsed() >= 25); // A coarse timer may be early by a twentieth.
        QCOMPARE(triggered.size(), 1);
        QCOMPARE(running.size(), 2);
    }

    void waitsForAllThatIsPending()
    {
        Delay delay;
        delay.setInterval(0);
        const QSignalSpy triggered(&delay, &Delay::triggered);
        bool cameBefore = false;
        QMetaObject::invokeMethod(
            &delay, [&] { cameBefore = triggered.isEmpty(); }, Qt::QueuedConnection);
        delay.restart();
        QCOMPARE(triggered.size(), 0);
        QTRY_COMPARE(triggered.size(), 1);
        QVERIFY(cameBefore);
    }

    void mayBeStartedAgainWhenItTriggers()
    {
        Delay delay;
        delay.setInterval(1);
        int times = 0;
        connect(&delay, &Delay::triggered, &delay, [&] {
            if (++times < 3)
                delay.restart();
        });
        delay.restart();
        QTRY_COMPARE(times, 3);
        QVERIFY(!delay.isRunning());
    }
};

QTEST_GUILESS_MAIN(DelayTest)
#include "DelayTest.moc"
