#include "ViewportTracker.h"

#include "SampleRows.h"
#include "TrackedItem.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr double viewportHeight = 200;
/// What counts as near above and below the viewport.
constexpr double margin = 256;

/// A list that scrolls, in a window: a column in a flickable, and a tracker of what is in it.
class List
{
public:
    List()
    {
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\n"
                          "Flickable {\n"
                          "    property Column stack: column\n"
                          "    width: 300; height: 200; contentHeight: column.height\n"
                          "    Column { id: column; spacing: 10 }\n"
                          "}",
                          {});
        m_flickable.reset(qobject_cast<QQuickItem *>(component.create()));
        m_window.resize(300, int(viewportHeight));
        m_window.setColor(Qt::white);
        m_flickable->setParentItem(m_window.contentItem());
        m_tracker = new ViewportTracker(m_flickable.get());
        m_tracker->setFlickable(m_flickable.get());
        m_tracker->setContent(stack());
        m_window.show();
    }

    QQuickWindow &window() { return m_window; }
    ViewportTracker *tracker() { return m_tracker; }
    QQuickItem *stack() const { return m_flickable->property("stack").value<QQuickItem *>(); }
    void scrollTo(double y) { m_flickable->setProperty("contentY", y); }

    TrackedItem *addItem(double height) { return addItemTo(stack(), height); }
    /// The same, as something that decorates it would hold it.
    TrackedItem *addWrappedItem(double height, double above)
    {
        auto *wrapper = new QQuickItem(stack());
        wrapper->setSize({300, above + height});
        TrackedItem *item = addItemTo(wrapper, height);
        item->setY(above);
        return item;
    }

private:
    TrackedItem *addItemTo(QQuickItem *parent, double height)
    {
        auto *item = new TrackedItem(parent);
        item->setSize({300, height});
        item->setTracker(m_tracker);
        return item;
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_flickable;
    ViewportTracker *m_tracker;
};

QStringList lines(int count)
{
    return QStringList(count, u"█████"_s);
}

bool hasInk(const QImage &image, double top, double bottom)
{
    for (int y = int(top); y < int(bottom); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).lightness() < 128)
                return true;
        }
    }
    return false;
}
} // namespace

/// What is near the visible part of a list, and that text which has something to do with it is
/// painted there.
class ViewportTrackerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhatIsNear()
    {
        List list;
        const TrackedItem *first = list.addItem(1000);
        const TrackedItem *second = list.addItem(1000);
        QVERIFY(!first->isNearViewport());
        QTRY_COMPARE(first->nearBand(), (VerticalBand{0, viewportHeight + margin}));
        QVERIFY(!second->isNearViewport());

        list.scrollTo(900);
        QTRY_COMPARE(first->nearBand(), (VerticalBand{900 - margin, 1000}));
        QCOMPARE(second->nearBand(), (VerticalBand{0, 900 + viewportHeight + margin - 1010}));

        list.scrollTo(1700);
        QTRY_VERIFY(!first->isNearViewport());
    }

    void tracksWhatIsWrapped()
    {
        List list;
        const TrackedItem *first = list.addWrappedItem(1000, 30);
        const TrackedItem *second = list.addWrappedItem(1000, 50);
        QTRY_COMPARE(first->nearBand(), (VerticalBand{0, viewportHeight + margin - 30}));
        QVERIFY(!second->isNearViewport());
        list.scrollTo(1090); // where the second begins
        QTRY_COMPARE(second->nearBand(), (VerticalBand{0, viewportHeight + margin}));
    }

    void looksAgainWhenTheContentChanges()
    {
        List list;
        TrackedItem *first = list.addItem(1000);
        const TrackedItem *second = list.addItem(1000);
        QTRY_VERIFY(first->isNearViewport());
        first->setHeight(50);
        QTRY_COMPARE(second->nearBand(), (VerticalBand{0, viewportHeight + margin - 60}));
        delete first;
        QTRY_COMPARE(second->nearBand(), (VerticalBand{0, viewportHeight + margin}));
    }

    void countsEverythingAsNearWithoutATracker()
    {
        List list;
        TrackedItem *item = list.addItem(5000);
        list.scrollTo(3000);
        QTRY_COMPARE(item->nearBand().top, 3000 - margin);
        item->setTracker(nullptr);
        QVERIFY(item->nearBand().top < 0 && item->nearBand().bottom > 5000);
        list.scrollTo(1000);
        QTest::qWait(0);
        QVERIFY(item->nearBand().top < 0);
    }

    void paintsTextOfAWrappedItem()
    {
        List list;
        TrackedItem *item = list.addWrappedItem(1000, 40);
        auto *decoration = new QQuickItem(item);
        SampleRows text(lines(3), decoration);
        text.setTrackedItem(item);
        QTRY_VERIFY(hasInk(list.window().grabWindow(), 40, 40 + text.height()));

        list.scrollTo(1500);
        QTRY_VERIFY(!item->isNearViewport());
        list.scrollTo(20);
        QTRY_VERIFY(hasInk(list.window().grabWindow(), 20, 20 + text.height()));
    }

    // The contract cannot be broken without anyone noticing: a text that is not tracked is there,
    // and its author hears of it.
    void paintsUntrackedTextWholeAndWarns_data()
    {
        QTest::addColumn<bool>("isInItem");
        QTest::newRow("without an item") << false;
        QTest::newRow("in an item without a tracker") << true;
    }
    void paintsUntrackedTextWholeAndWarns()
    {
        QFETCH(bool, isInItem);
        QQuickWindow window;
        window.resize(300, 2000);
        window.setColor(Qt::white);
        TrackedItem item(window.contentItem());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"no ViewportTracker tracks"_s));
        SampleRows text(lines(100), window.contentItem());
        if (isInItem)
            text.setTrackedItem(&item);
        window.show();
        QVERIFY(text.height() > 1000);
        QTRY_VERIFY(hasInk(window.grabWindow(), text.height() - 20, text.height()));
        QVERIFY(hasInk(window.grabWindow(), 0, 20));

        QTest::failOnWarning(QRegularExpression(u".*"_s));
        text.setColor(Qt::red);
        text.ensurePolished();
    }

    void paintsTrackedTextOnlyWhereItIsNear()
    {
        QQuickWindow window;
        window.resize(300, 2000);
        window.setColor(Qt::white);
        ViewportTracker tracker(window.contentItem());
        TrackedItem item(window.contentItem());
        item.setTracker(&tracker);
        item.setNearBand({0, 100});
        SampleRows text(lines(100), &item);
        text.setTrackedItem(&item);
        window.show();
        QTRY_VERIFY(hasInk(window.grabWindow(), 0, 20));
        QVERIFY(!hasInk(window.grabWindow(), text.height() - 20, text.height()));
        item.setNearBand({text.height() - 20, text.height()});
        QTRY_VERIFY(hasInk(window.grabWindow(), text.height() - 20, text.height()));
    }
};

QTEST_MAIN(ViewportTrackerTest)
#include "ViewportTrackerTest.moc"
