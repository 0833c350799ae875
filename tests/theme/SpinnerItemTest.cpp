#include "SpinnerItem.h"

#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

namespace {

class CountedSpinner : public SpinnerItem
{
public:
    using SpinnerItem::SpinnerItem;

    int steps() const { return m_steps; }

protected:
    void timerEvent(QTimerEvent *event) override
    {
        ++m_steps;
        SpinnerItem::timerEvent(event);
    }

private:
    int m_steps = 0;
};

} // namespace

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
    CountedSpinner spinner(&parent);
    spinner.setSize({16, 16});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(spinner.steps() > 0);

    QQuickItem &hidden = hiddenItself ? static_cast<QQuickItem &>(spinner) : parent;
    hidden.setVisible(false);
    QVERIFY(!spinner.isRunning());
    const int stepsBefore = spinner.steps();
    QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
    QTRY_VERIFY(frames.count() > 0);
    // A frame asked for during that one comes long before the first step of another spinner. While
    // the other one then turns once, there is none.
    QQuickWindow otherWindow;
    const CountedSpinner other(otherWindow.contentItem());
    QTRY_VERIFY(other.steps() >= 1);
    frames.clear();
    QTRY_VERIFY(other.steps() >= 9);
    QCOMPARE(spinner.steps(), stepsBefore);
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
