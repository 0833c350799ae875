#include "SpinnerItem.h"

#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

class SpinnerItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void turnsWhileItCanBeSeen();
    void restsWhenItCannotBeSeen_data();
    void restsWhenItCannotBeSeen();
    void isAsLargeAsItsSize();
};

void SpinnerItemTest::turnsWhileItCanBeSeen()
{
    QQuickWindow window;
    window.resize(40, 40);
    window.setColor(Qt::white);
    SpinnerItem spinner;
    spinner.setSize({16, 16});
    QVERIFY(!spinner.isRunning());
    spinner.setParentItem(window.contentItem());
    QVERIFY(spinner.isRunning());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QImage first = window.grabWindow();
    QTRY_VERIFY(window.grabWindow() != first);
    // Eight steps later it looks as it did.
    QTRY_COMPARE(window.grabWindow(), first);
}

void SpinnerItemTest::restsWhenItCannotBeSeen_data()
{
    QTest::addColumn<bool>("hiddenItself");

    QTest::newRow("hidden itself") << true;
    QTest::newRow("hidden with its parent") << false;
}

void SpinnerItemTest::restsWhenItCannotBeSeen()
{
    QFETCH(bool, hiddenItself);

    QQuickWindow window;
    window.resize(40, 40);
    QQuickItem parent;
    parent.setParentItem(window.contentItem());
    SpinnerItem spinner(&parent);
    spinner.setSize({16, 16});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(spinner.isRunning());

    QQuickItem &hidden = hiddenItself ? static_cast<QQuickItem &>(spinner) : parent;
    hidden.setVisible(false);
    QVERIFY(!spinner.isRunning());
    // The frame without it is the last one.
    QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
    QTRY_VERIFY(frames.count() > 0);
    frames.clear();
    constexpr int idle = 1000;
    QTest::qWait(idle);
    QCOMPARE(frames.count(), 0);

    hidden.setVisible(true);
    QVERIFY(spinner.isRunning());
}

void SpinnerItemTest::isAsLargeAsItsSize()
{
    SpinnerItem spinner;
    QCOMPARE(spinner.implicitWidth(), 16);
    spinner.setDiameter(12);
    QCOMPARE(spinner.implicitWidth(), 12);
    QCOMPARE(spinner.implicitHeight(), 12);
}

QTEST_MAIN(SpinnerItemTest)
#include "SpinnerItemTest.moc"
