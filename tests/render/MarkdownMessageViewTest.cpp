#include "MarkdownMessageView.h"

#include "FontMetricsCache.h"
#include "Theme.h"
#include "TrackedItem.h"

#include <QAbstractEventDispatcher>
#include <QClipboard>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using Kind = MarkdownBlock::Kind;

namespace {
constexpr double wrapWidth = 400;

double lineHeight(double points, QFont::Weight weight)
{
    return FontMetricsCache::of(points, weight).lineHeight();
}

// What two views must agree on.
struct Row
{
    AttributedText text;
    TextRow::Marker marker;
    double top;
    QList<TextLine> lines;

    bool operator==(const Row &) const = default;
};

QList<Row> rowsOf(const TextRowsItem &view)
{
    QList<Row> rows;
    for (qsizetype i = 0; i < view.rowCount(); ++i)
        rows.append(
            {view.row(i).text(), view.row(i).marker(), view.rowTop(i), view.row(i).lines()});
    return rows;
}

// Between whole points too, which Qt Test's functions round.
void doubleClick(MarkdownMessageView &view, QPointF point)
{
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick}) {
        QMouseEvent event(type, point, view.mapToGlobal(point), Qt::LeftButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&view, &event);
    }
}

// Around what is dark above `bottom`.
QRect inkOf(const QImage &image, int bottom)
{
    QRect ink;
    for (int y = 0; y < bottom; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).lightness() < 128)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

class Window : public QQuickWindow
{
public:
    Window()
    {
        resize(500, 400);
        m_trackedItem.setTracker(&m_tracker);
        m_trackedItem.setNearBand({0, 10'000});
        m_view = new MarkdownMessageView(contentItem());
        m_view->setTrackedItem(&m_trackedItem);
        m_view->setWrapWidth(wrapWidth);
        m_view->setColor(Qt::black);
        m_view->setSelectionColor(Qt::green);
        m_view->setDotColor(Qt::red);
    }

    MarkdownMessageView &view() { return *m_view; }
    TrackedItem &trackedItem() { return m_trackedItem; }

    void showText(const QString &text)
    {
        m_view->setText(text);
        m_view->ensurePolished();
        m_view->setSize({wrapWidth, m_view->implicitHeight()});
    }

    QPoint pointAt(qsizetype row, double x, double y = 5)
    {
        return m_view->mapToScene({x, m_view->rowTop(row) + y}).toPoint();
    }

private:
    ViewportTracker m_tracker;
    TrackedItem m_trackedItem{contentItem()};
    MarkdownMessageView *m_view;
};
} // namespace

/// A reply as rows: their figures, their growth, and what a person selects of them.
class MarkdownMessageViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesEveryBlockItsSize_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<double>("size");
        QTest::addColumn<QFont::Weight>("weight");

        QTest::newRow("heading 1") << Kind::heading1 << 19.0 << QFont::Bold;
        QTest::newRow("heading 2") << Kind::heading2 << 17.0 << QFont::DemiBold;
        QTest::newRow("heading 3") << Kind::heading3 << 15.5 << QFont::DemiBold;
        QTest::newRow("bullet") << Kind::bullet << 14.5 << QFont::Normal;
        QTest::newRow("numbered") << Kind::numbered << 14.5 << QFont::Normal;
        QTest::newRow("paragraph") << Kind::paragraph << 14.5 << QFont::Normal;
    }
    void givesEveryBlockItsSize()
    {
        QFETCH(Kind, kind);
        QFETCH(double, size);
        QFETCH(QFont::Weight, weight);
        for (const double scale : {0.9, 1.0, 1.15}) {
            const auto text = blockView({kind, u"x"_s}, scale);
            QVERIFY(text);
            QCOMPARE(*text, (BoldMarkdownText{u"x"_s, size * scale, weight}));
        }
    }

    void showsNothingForAnEmptyBlock() { QVERIFY(!blockView({}, 1.0)); }

    void stacksRowsSevenPointsApart()
    {
        Window window;
        window.showText(u"# Uno\n\ntexto\n- punto\n2. dos"_s);
        MarkdownMessageView &view = window.view();
        QCOMPARE(view.rowCount(), 5);
        double top = 0;
        QCOMPARE(view.rowTop(0), top);
        top += lineHeight(19, QFont::Bold) + 7;
        QCOMPARE(view.rowTop(1), top);
        QVERIFY(view.row(1).isSpacer());
        QCOMPARE(view.row(1).height(), 4.0);
        top += 4 + 7;
        QCOMPARE(view.rowTop(2), top);
        top += lineHeight(14.5, QFont::Normal) + 7;
        QCOMPARE(view.rowTop(3), top);
        top += lineHeight(14.5, QFont::Normal) + 7;
        QCOMPARE(view.rowTop(4), top);
        QCOMPARE(view.implicitHeight(), top + lineHeight(14.5, QFont::Normal));
        QCOMPARE(view.row(3).marker(), TextRow::Marker::dot);
        QCOMPARE(view.row(4).marker(), TextRow::Marker::none);
        QCOMPARE(view.plainText(), u"Uno\n\ntexto\npunto\n2. dos"_s);
    }

    void showsAnEmptyTextAsOneSpacer()
    {
        Window window;
        window.view().setTextScale(1);
        window.showText(u"x"_s);
        window.showText(u""_s);
        QCOMPARE(window.view().rowCount(), 1);
        QCOMPARE(window.view().implicitHeight(), 4.0);
    }

    void scalesFontsButNotTheDot()
    {
        Window window;
        window.view().setTextScale(1.15);
        window.showText(u"- punto"_s);
        QCOMPARE(window.view().row(0).text().size, 14.5 * 1.15);
        const double textWidth = window.view().row(0).lines().first().width;
        QCOMPARE(window.view().row(0).width(), 4 + 8 + textWidth);
    }

    void asksForTheExactFont()
    {
        for (const double points : {19.0, 17.0, 15.5, 14.5, 14.5 * 0.9, 14.5 * 1.15})
            QCOMPARE(FontMetricsCache::of(points, QFont::Bold).font(),
                     Theme::font(points, QFont::Bold));
    }

    void wrapsABulletBesideItsDot()
    {
        Window window;
        window.showText(u"- "_s + u"palabra "_s.repeated(40));
        const TextRow &row = window.view().row(0);
        QVERIFY(row.lines().size() > 1);
        for (const TextLine &line : row.lines())
            QVERIFY(line.width <= wrapWidth - 12);
    }

    void showsMarkersAloneAsABlankLine()
    {
        Window window;
        window.showText(u"**\n- ****"_s);
        for (qsizetype i = 0; i < 2; ++i) {
            const TextRow &row = window.view().row(i);
            QVERIFY(!row.isSpacer());
            QVERIFY(row.text().runs.isEmpty());
            QCOMPARE(row.height(), lineHeight(14.5, QFont::Normal));
        }
        QCOMPARE(window.view().row(1).marker(), TextRow::Marker::dot);
    }

    void alignsEveryScriptAtTheLeadingEdge_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("left to right") << u"corazón"_s;
        QTest::newRow("right to left") << u"القلب"_s;
        QTest::newRow("right to left, among others") << u"القلب corazón 5"_s;
    }
    void alignsEveryScriptAtTheLeadingEdge()
    {
        QFETCH(QString, text);
        Window window;
        window.showText(text);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const double width = window.view().row(0).width();
        QVERIFY(width < wrapWidth / 2);
        QRect ink;
        QTRY_VERIFY(!(ink = inkOf(window.grabWindow(), 30)).isEmpty());
        QVERIFY2(ink.left() <= 4, qPrintable(QString::number(ink.left())));
        QVERIFY2(ink.right() <= width + 2, qPrintable(QString::number(ink.right())));
    }

    void hangsTheSpacesAtWhichALineIsBroken_data()
    {
        QTest::addColumn<QString>("word");
        QTest::newRow("left to right") << u"corazón"_s;
        QTest::newRow("right to left") << u"القلب"_s;
    }
    void hangsTheSpacesAtWhichALineIsBroken()
    {
        QFETCH(QString, word);
        Window window;
        window.showText((word + QString(12, u' ')).repeated(8));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const auto &lines = window.view().row(0).lines();
        QVERIFY(lines.size() > 1);
        QRect ink;
        QTRY_VERIFY(!(ink = inkOf(window.grabWindow(), int(lines[0].height))).isEmpty());
        QVERIFY2(ink.left() <= 4, qPrintable(QString::number(ink.left())));
        QVERIFY2(ink.right() <= lines[0].width + 2, qPrintable(QString::number(ink.right())));
    }

    void paintsTheDotOnTheBaseline()
    {
        Window window;
        window.view().setColor(Qt::transparent);
        window.showText(u"- punto"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const double baseline = FontMetricsCache::of(14.5, QFont::Normal).ascent();
        QRect dot;
        QTRY_VERIFY([&] {
            const QImage image = window.grabWindow();
            dot = {};
            for (int y = 0; y < 40; ++y) {
                for (int x = 0; x < 40; ++x) {
                    const QColor color = image.pixelColor(x, y);
                    if (color.red() > 200 && color.green() < 160)
                        dot |= QRect(x, y, 1, 1);
                }
            }
            return !dot.isEmpty();
        }());
        QVERIFY(qAbs(dot.left()) <= 1);
        QVERIFY(qAbs(dot.right() + 1 - 4) <= 1);
        QVERIFY(qAbs(dot.bottom() + 1 - baseline) <= 1);
        QVERIFY(qAbs(dot.top() - (baseline - 4)) <= 1);
    }

    void growsIntoWhatItWouldBeFromScratch_data()
    {
        QTest::addColumn<QString>("text");

        QTest::newRow("lines of all kinds")
            << u"# Título\r\n\r\n## Dos **b**\n### Tres\n- uno **dos**\n* tres\n1. cuatro\n\n"
               u"**sin cierre\n####\n#\n  sangría\n"_s;
        QTest::newRow("ends in CR") << u"a\r\nb\r"_s;
        QTest::newRow("scripts") << u"漢字 y العربية\n\U0001f600\U0001f600 fin\n"_s;
        QTest::newRow("long") << u"- palabra **otra** palabra\n\n"_s.repeated(60);
    }
    void growsIntoWhatItWouldBeFromScratch()
    {
        QFETCH(QString, text);
        QRandomGenerator random(11);
        Window grown;
        Window appended;
        appended.showText({});
        for (qsizetype end = 0; end < text.size();) {
            const qsizetype start
                = std::exchange(end, std::min(end + 1 + random.bounded(7), text.size()));
            grown.showText(text.first(end));
            appended.view().appendText(text.sliced(start, end - start));
            if (random.bounded(2) == 0)
                appended.view().ensurePolished();
        }
        appended.view().ensurePolished();
        Window fresh;
        fresh.showText(text);
        QCOMPARE(appended.view().text(), text);
        QCOMPARE(rowsOf(appended.view()), rowsOf(fresh.view()));
        QCOMPARE(rowsOf(grown.view()), rowsOf(fresh.view()));
        QCOMPARE(grown.view().implicitHeight(), fresh.view().implicitHeight());
        QCOMPARE(grown.view().implicitWidth(), fresh.view().implicitWidth());
    }

    void shrinksIntoWhatItWouldBeFromScratch()
    {
        const QString text = u"uno\n- dos\n\n\n# tres\n\r\n\n"_s;
        for (qsizetype length = 0; length <= text.size(); ++length) {
            Window trimmed;
            trimmed.showText(text);
            trimmed.showText(text.first(length));
            Window fresh;
            fresh.showText(text.first(length));
            QCOMPARE(rowsOf(trimmed.view()), rowsOf(fresh.view()));
        }
    }

    void replacesATextThatDiffers()
    {
        Window window;
        window.showText(u"uno\ndos\ntres"_s);
        window.showText(u"uno\nDOS\ntres\n4. cuatro"_s);
        QCOMPARE(window.view().plainText(), u"uno\nDOS\ntres\n4. cuatro"_s);
    }

    void appliesPiecesOfOneFrameTogether()
    {
        Window window;
        window.showText(u"uno\n"_s);
        QSignalSpy heights(&window.view(), &QQuickItem::implicitHeightChanged);
        QString text = u"uno\n"_s;
        for (int i = 0; i < 100; ++i) {
            text += u"línea\n"_s;
            window.view().setText(text);
        }
        window.view().ensurePolished();
        QCOMPARE(heights.size(), 1);
        QCOMPARE(window.view().rowCount(), 102);
    }

    void keepsAllRowsButTheLastWhenALineArrives()
    {
        const auto rowsOf = [](const MarkdownMessageView &view) {
            std::vector<const QChar *> rows;
            for (qsizetype i = 0; i < view.rowCount(); ++i)
                rows.push_back(view.row(i).text().text.constData());
            return rows;
        };
        Window window;
        QString text = u"- palabra **otra** palabra\n"_s.repeated(1'000);
        window.showText(text);
        auto before = rowsOf(window.view());
        before.pop_back(); // Empty: the line that begins after the last line feed

        text += u"- palabra **otra** palabra\n"_s;
        window.showText(text);
        auto after = rowsOf(window.view());
        QCOMPARE(after.size(), before.size() + 2);
        after.resize(before.size());
        QVERIFY(after == before);
    }

    void wrapsAnewAtAnotherWidth()
    {
        Window window;
        const QString text
            = u"palabra **otra** "_s.repeated(30) + u"\n- "_s + u"punto "_s.repeated(40);
        window.showText(text);
        window.view().setWrapWidth(250);
        window.view().ensurePolished();
        Window fresh;
        fresh.view().setWrapWidth(250);
        fresh.showText(text);
        QCOMPARE(rowsOf(window.view()), rowsOf(fresh.view()));
    }

    void showsMarkupAndControlsHarmlessly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");

        const QString replacement(QChar::ReplacementCharacter);
        QTest::newRow("markup") << u"<img src='http://x/y'> <b>x</b>"_s
                                << u"<img src='http://x/y'> <b>x</b>"_s;
        QTest::newRow("entities and links")
            << u"&lt; [a](http://b) `c`"_s << u"&lt; [a](http://b) `c`"_s;
        QTest::newRow("NUL") << QString(u"a"_s + QChar(0) + u"b"_s)
                             << u"a"_s + replacement + u"b"_s;
        QTest::newRow("escape") << u"a\u001b[31mb"_s << u"a"_s + replacement + u"[31mb"_s;
        QTest::newRow("carriage return") << u"a\rb"_s << u"a b"_s;
        QTest::newRow("tab") << u"a\tb"_s << u"a\tb"_s;
        QTest::newRow("lone high surrogate")
            << QString(u"a"_s + QChar(0xd83d) + u"b"_s) << u"a"_s + replacement + u"b"_s;
        QTest::newRow("lone low surrogate")
            << QString(u"a"_s + QChar(0xde00)) << u"a"_s + replacement;
        QTest::newRow("pair") << u"a\U0001f600b"_s << u"a\U0001f600b"_s;
    }
    void showsMarkupAndControlsHarmlessly()
    {
        QFETCH(QString, text);
        Window window;
        window.showText(text);
        QTEST(window.view().plainText(), "shown");
        // What is copied is what came.
        window.view().selectAll();
        QCOMPARE(window.view().selectedText(), text);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!window.grabWindow().isNull());
    }

    void holdsHugeReplies_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("rows");

        QTest::newRow("a million characters without a blank") << QString(1'000'000, u'x') << 1;
        QTest::newRow("ten thousand lines")
            << (u"- palabra **otra**\n"_s.repeated(9'999) + u"fin"_s) << 10'000;
        QTest::newRow("marks") << (u"e"_s + QString(300, QChar(0x301))).repeated(1'000) << 1;
        QTest::newRow("right to left without blanks") << QString(100'000, u'ب') << 1;
        QTest::newRow("markers") << u"a**"_s.repeated(30'000) << 1;
        QTest::newRow("NUL") << QString(100'000, QChar(0)) << 1;
        QTest::newRow("lone surrogates") << QString(100'000, QChar(0xdc00)) << 1;
    }
    void holdsHugeReplies()
    {
        QFETCH(QString, text);
        QFETCH(int, rows);
        Window window;
        // As a list does: only what is near its visible part is painted.
        window.trackedItem().setNearBand({0, 400});
        window.showText(text);
        MarkdownMessageView &view = window.view();
        QCOMPARE(view.rowCount(), rows);
        QVERIFY(view.implicitWidth() <= wrapWidth);
        QVERIFY(view.implicitHeight() > 100 * lineHeight(14.5, QFont::Normal));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseClick(&window, Qt::LeftButton, {}, window.pointAt(0, 3));
        QTest::keySequence(&window, QKeySequence::SelectAll);
        QCOMPARE(view.selectedText().size(), view.plainText().size());
        QVERIFY(!window.grabWindow().isNull());
        QTest::mouseDClick(&window, Qt::LeftButton, {}, window.pointAt(0, 40));
        QVERIFY(!view.selectedText().isEmpty());
    }

    void selectsAcrossRows()
    {
        Window window;
        window.showText(u"# Uno **dos**\n\n- tres\nfin"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(0, 0));
        QTest::mouseMove(&window, window.pointAt(3, 300));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(3, 300));
        QCOMPARE(window.view().selectedText(), u"Uno dos\n\ntres\nfin"_s);

        QTest::keySequence(&window, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"Uno dos\n\ntres\nfin"_s);
    }

    void selectsWholeRowsOfAnyScript_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("right to left") << u"ما هو القلب؟"_s;
        QTest::newRow("mixed directions") << u"dosis الجرعة 5 mg עברית fin"_s;
        QTest::newRow("marks by the hundred") << u"a"_s + QString(400, QChar(0x301)) + u"b"_s;
        QTest::newRow("only marks") << QString(300, QChar(0x301));
        QTest::newRow("emoji of several code points")
            << u"\U0001f468\u200d\U0001f469\u200d\U0001f467 \U0001f1e6\U0001f1f7"_s;
        QTest::newRow("ideographs") << u"心臓の働き"_s;
        QTest::newRow("tabs") << u"a\tb\tc"_s;
        QTest::newRow("direction overrides") << u"a\u202ebc\u202c d"_s;
    }
    void selectsWholeRowsOfAnyScript()
    {
        QFETCH(QString, text);
        Window window;
        window.showText(text);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        // In a row from right to left the press is at the end of the text.
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(0, 0));
        QTest::mouseMove(&window, window.pointAt(0, wrapWidth - 1));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(0, wrapWidth - 1));
        QCOMPARE(window.view().selectedText(), text);
    }

    void selectsToTheEndOfALine()
    {
        Window window;
        window.showText(u"palabra "_s.repeated(30));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const TextLine line = window.view().row(0).lines().first();
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(0, 0));
        QTest::mouseMove(&window, window.pointAt(0, wrapWidth - 1));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(0, wrapWidth - 1));
        QCOMPARE(window.view().selectedText(), window.view().plainText().first(line.length - 1));
    }

    void selectsBackwards()
    {
        Window window;
        window.showText(u"uno\ndos\ntres"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(2, 300));
        QTest::mouseMove(&window, window.pointAt(1, 0));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(1, 0));
        QCOMPARE(window.view().selectedText(), u"dos\ntres"_s);
    }

    void keepsTheSelectionWhileLinesArrive()
    {
        Window window;
        const QString text = u"uno\ndos\ntres"_s;
        window.showText(text);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(0, 0));
        QTest::mouseMove(&window, window.pointAt(2, 300));
        window.showText(text + u" y más\ncuatro"_s);
        QCOMPARE(window.view().selectedText(), u"uno\ndos\ntres"_s);
        QTest::mouseMove(&window, window.pointAt(3, 300));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(3, 300));
        QCOMPARE(window.view().selectedText(), u"uno\ndos\ntres y más\ncuatro"_s);
        window.showText(text);
        QCOMPARE(window.view().selectedText(), text);
    }

    // A growing reply ends in a line feed, and the row after it goes when the reply is complete.
    void selectsFromARowThatHasGone()
    {
        Window window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.showText(u"uno\ndos\n"_s);
        QCOMPARE(window.view().rowCount(), 3);
        QTest::mousePress(&window, Qt::LeftButton, {}, window.pointAt(2, 3, 2));
        window.showText(u"uno\ndos"_s);
        QCOMPARE(window.view().rowCount(), 2);
        QTest::mouseMove(&window, window.pointAt(0, 0));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, window.pointAt(0, 0));
        QCOMPARE(window.view().selectedText(), u"uno\ndos"_s);
    }

    void keepsToARowThatWasShortened()
    {
        Window window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.showText(u"uno dos tres"_s);
        QTest::mouseClick(&window, Qt::LeftButton, {}, window.pointAt(0, 300));
        window.showText(u"uno"_s);
        QTest::mouseClick(&window, Qt::LeftButton, Qt::ShiftModifier, window.pointAt(0, 0));
        QCOMPARE(window.view().selectedText(), u"uno"_s);
    }

    void selectsAWordByADoubleClickAndARowByATriple()
    {
        Window window;
        window.showText(u"primera fila\nel dolor torácico"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QPoint word = window.pointAt(1, 40);
        QTest::mouseDClick(&window, Qt::LeftButton, {}, word);
        QCOMPARE(window.view().selectedText(), u"dolor"_s);
        QTest::mouseClick(&window, Qt::LeftButton, {}, word);
        QCOMPARE(window.view().selectedText(), u"el dolor torácico"_s);
    }

    void takesTheWordUnderADoubleClick_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("before");
        QTest::addColumn<double>("distance");
        QTest::addColumn<QString>("word");

        const QString text = u"el dolor, torácico fin"_s;
        QTest::newRow("start of the row") << text << u""_s << 0.0 << u"el"_s;
        QTest::newRow("first letter") << text << u"el "_s << 2.0 << u"dolor"_s;
        QTest::newRow("last letter") << text << u"el dolor"_s << -1.5 << u"dolor"_s;
        QTest::newRow("last letter before a blank") << text << u"el"_s << -1.5 << u"el"_s;
        QTest::newRow("end of a word") << text << u"el"_s << 0.0 << u"el"_s;
        QTest::newRow("end of a longer word")
            << text << u"el dolor, torácico"_s << 0.5 << u"torácico"_s;
        QTest::newRow("blank") << text << u"el "_s << -1.0 << u" "_s;
        QTest::newRow("comma") << text << u"el dolor,"_s << -1.5 << u","_s;
        QTest::newRow("last letter of the row") << text << text << -1.5 << u"fin"_s;
        QTest::newRow("end of the row") << text << text << 0.0 << u"fin"_s;
        QTest::newRow("far beyond the end") << text << text << 150.0 << u"fin"_s;
        QTest::newRow("in front of the row") << text << u""_s << -3.0 << u"el"_s;
        QTest::newRow("accents of their own")
            << u"to\u0301rax y abdomen"_s << u"to\u0301rax"_s << 0.0 << u"to\u0301rax"_s;
        QTest::newRow("empty row") << u""_s << u""_s << 5.0 << u""_s;
        QTest::newRow("only blanks") << u"**  **"_s << u" "_s << 0.0 << u"  "_s;
    }
    void takesTheWordUnderADoubleClick()
    {
        QFETCH(QString, text);
        QFETCH(QString, before);
        QFETCH(double, distance);
        Window window;
        window.showText(text);
        const QFontMetricsF metrics(FontMetricsCache::of(14.5, QFont::Normal).font());
        doubleClick(window.view(), {metrics.horizontalAdvance(before) + distance, 8});
        QTEST(window.view().selectedText(), "word");
    }

    void takesTheLastWordOfALineBeyondItsEnd()
    {
        Window window;
        window.showText(u"palabra "_s.repeated(20));
        const TextLine line = window.view().row(0).lines().first();
        doubleClick(window.view(), {line.width + 30, 8});
        QCOMPARE(window.view().selectedText(), u"palabra"_s);
    }

    void extendsByWordsAfterADoubleClick()
    {
        Window window;
        window.showText(u"uno dos\ntres cuatro cinco"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseDClick(&window, Qt::LeftButton, {}, window.pointAt(0, 40));
        QTest::mousePress(&window, Qt::LeftButton, Qt::ShiftModifier, window.pointAt(1, 50));
        QCOMPARE(window.view().selectedText(), u"dos\ntres cuatro"_s);
        QTest::mouseRelease(&window, Qt::LeftButton, Qt::ShiftModifier, window.pointAt(1, 50));
    }

    void selectsAllWithinTheMessage()
    {
        Window window;
        window.showText(u"# Uno\n\ndos"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseClick(&window, Qt::LeftButton, {}, window.pointAt(0, 3));
        QCOMPARE(window.view().selectedText(), u""_s);
        QTest::keySequence(&window, QKeySequence::SelectAll);
        QCOMPARE(window.view().selectedText(), u"Uno\n\ndos"_s);
    }

    void losesTheSelectionWithTheFocus()
    {
        Window window;
        window.showText(u"uno dos"_s);
        auto *other = new MarkdownMessageView(window.contentItem());
        other->setWrapWidth(wrapWidth);
        other->setText(u"otro"_s);
        other->setY(200);
        other->setSize({100, 30});
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::mouseDClick(&window, Qt::LeftButton, {}, window.pointAt(0, 5));
        QCOMPARE(window.view().selectedText(), u"uno"_s);
        QTest::mouseDClick(&window, Qt::LeftButton, {}, QPoint(5, 208));
        QCOMPARE(window.view().selectedText(), u""_s);
        QCOMPARE(other->selectedText(), u"otro"_s);
    }

    void tellsItsPlainTextOnceASecondAtMostWhileItGrows()
    {
        Window window;
        window.showText(u"a\n"_s);
        QSignalSpy told(&window.view(), &TextRowsItem::plainTextChanged);
        QString text = u"a\n"_s;
        for (int i = 0; i < 50; ++i) {
            text += u"línea\n"_s;
            window.showText(text);
        }
        QCOMPARE(told.size(), 1);
        QTRY_COMPARE(told.size(), 2);
        window.showText(u"otro"_s);
        QCOMPARE(told.size(), 3);
    }

    void tellsAWholeReplyAtOnce()
    {
        Window window;
        window.showText(u"a\nb\n"_s);
        window.showText(u"a\nb\nc\n"_s);
        QSignalSpy told(&window.view(), &TextRowsItem::plainTextChanged);
        window.showText(u"a\nb\nc\nd\n"_s);
        QCOMPARE(told.size(), 0);
        window.showText(u"a\nb\nc\nd"_s);
        QCOMPARE(told.size(), 1);
        window.showText(u"a\nb\nc\nd\n"_s);
        window.showText(u"a\nb\nc\nd\n\ne"_s);
        QCOMPARE(window.view().plainText(), u"a\nb\nc\nd\n\ne"_s);
        QCOMPARE(told.size(), 3);
    }

    void needsNoTimerUnlessItGrows()
    {
        const auto timers = [](QObject &object) {
            return QAbstractEventDispatcher::instance()->registeredTimers(&object).size();
        };
        Window window;
        window.showText(u"a\nb"_s);
        QCOMPARE(timers(window.view()), 0);
        window.showText(u"a\nb\nc\n"_s);
        QCOMPARE(timers(window.view()), 1);
        QTRY_COMPARE(timers(window.view()), 0);
    }
};

QTEST_MAIN(MarkdownMessageViewTest)
#include "MarkdownMessageViewTest.moc"
