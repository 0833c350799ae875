#include "TileCache.h"

#include <QPainter>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr double rowHeight = 17.3; // Rows end within a pixel, whatever the ratio.
constexpr double rowWidth = 90;

/// Rows of text, painted by strips.
class TiledItem : public QQuickItem
{
public:
    explicit TiledItem(double ratio)
        : m_ratio(ratio)
    {
        setFlag(ItemHasContents);
    }

    /// Changes what lies below the first `kept` rows.
    void showRows(int count, int kept)
    {
        const double oldHeight = m_count * rowHeight;
        m_count = count;
        tiles.invalidate({kept * rowHeight, std::max(oldHeight, count * rowHeight)});
        refresh({0, 1e9});
    }

    bool refresh(VerticalBand band)
    {
        paintedFrom = 1e9;
        const bool differs = tiles.update(
            band, {rowWidth, m_count * rowHeight}, m_ratio,
            [this](QPainter &painter, VerticalBand painted) { paint(painter, painted); });
        update();
        return differs;
    }

    TileCache tiles;
    double paintedFrom = 1e9; ///< the top of what the last change had painted

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *) override
    {
        return tiles.synchronize(node, window());
    }

private:
    void paint(QPainter &painter, VerticalBand band)
    {
        paintedFrom = std::min(paintedFrom, band.top);
        for (int row = 0; row < m_count; ++row) {
            const double top = row * rowHeight;
            if (top + rowHeight < band.top || top > band.bottom)
                continue;
            painter.setPen(QColor::fromHsv(row * 37 % 360, 255, 160));
            painter.drawText(QPointF(row % 5, top + 14), u"Ágjy %1"_s.arg(row));
        }
    }

    double m_ratio;
    int m_count = 0;
};

/// An item in a window, and what can be seen of it.
struct Scene
{
    explicit Scene(double ratio)
        : item(ratio)
    {
        window.resize(100, 400);
        item.setParentItem(window.contentItem());
        window.show();
    }

    QQuickWindow window;
    TiledItem item;
};

} // namespace

class TileCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksTheSameGrownAsPaintedAtOnce_data()
    {
        QTest::addColumn<double>("ratio");
        for (const double ratio : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("ratio %.2f", ratio) << ratio;
    }
    void looksTheSameGrownAsPaintedAtOnce()
    {
        QFETCH(const double, ratio);
        constexpr int rows = 21; // Three strips, the last of them full to the half
        Scene grown(ratio);
        QVERIFY(QTest::qWaitForWindowExposed(&grown.window));
        for (int count = 1; count <= rows; ++count) {
            grown.item.showRows(count, count - 1);
            // On screen in between, since what is on screen is what is painted over.
            QVERIFY(!grown.window.grabWindow().isNull());
        }
        Scene fresh(ratio);
        QVERIFY(QTest::qWaitForWindowExposed(&fresh.window));
        const QImage empty = fresh.window.grabWindow();
        fresh.item.showRows(rows, 0);
        const QImage expected = fresh.window.grabWindow();
        QVERIFY(expected != empty);
        QCOMPARE(grown.window.grabWindow(), expected);
    }

    void takesAwayWhatIsGone()
    {
        Scene shrunk(1.5);
        QVERIFY(QTest::qWaitForWindowExposed(&shrunk.window));
        shrunk.item.showRows(14, 0);
        QVERIFY(!shrunk.window.grabWindow().isNull());
        shrunk.item.showRows(9, 9);
        Scene fresh(1.5);
        QVERIFY(QTest::qWaitForWindowExposed(&fresh.window));
        fresh.item.showRows(9, 0);
        QCOMPARE(shrunk.window.grabWindow(), fresh.window.grabWindow());
    }

    void paintsOnlyWhatIsNew()
    {
        Scene scene(1);
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.item.showRows(6, 0);
        QVERIFY(scene.item.paintedFrom <= 0);
        scene.item.showRows(7, 6);
        QVERIFY(scene.item.paintedFrom > 4 * rowHeight);
        QVERIFY(scene.item.paintedFrom < 6 * rowHeight);
        QVERIFY(!scene.item.refresh({0, 1e9}));
        QCOMPARE(scene.item.paintedFrom, 1e9);
    }

    void dropsWhatIsFarAndPaintsItAgain()
    {
        Scene scene(1);
        QVERIFY(QTest::qWaitForWindowExposed(&scene.window));
        scene.item.showRows(20, 0);
        const QImage whole = scene.window.grabWindow();
        QVERIFY(scene.item.refresh({260, 300}));
        QVERIFY(scene.window.grabWindow() != whole);
        QVERIFY(scene.item.refresh({0, 1e9}));
        QCOMPARE(scene.window.grabWindow(), whole);
    }
};

QTEST_MAIN(TileCacheTest)
#include "TileCacheTest.moc"
