#include "PlainMessageView.h"

#include "FontMetricsCache.h"
#include "TrackedItem.h"

#include <QAbstractEventDispatcher>
#include <QClipboard>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
constexpr double wrapWidth = 300;
constexpr double points = 14.5;

class Window : public QQuickWindow
{
public:
    explicit Window(const QString &text)
    {
        resize(400, 300);
        m_trackedItem.setTracker(&m_tracker);
        m_trackedItem.setNearBand({0, 10'000});
        m_view = new PlainMessageView(contentItem());
        m_view->setTrackedItem(&m_trackedItem);
        m_view->setWrapWidth(wrapWidth);
        m_view->setPoints(points);
        m_view->setColor(Qt::white);
        m_view->setSelectionColor(Qt::green);
        m_view->setText(text);
        m_view->ensurePolished();
        m_view->setSize({m_view->implicitWidth(), m_view->implicitHeight()});
    }

    PlainMessageView &view() { return *m_view; }

private:
    ViewportTracker m_tracker;
    TrackedItem m_trackedItem{contentItem()};
    PlainMessageView *m_view;
};

double lineHeight()
{
    return FontMetricsCache::of(points, QFont::Normal).lineHeight();
}
} // namespace

/// A question as it is shown: verbatim, whatever it holds.
class PlainMessageViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheTextVerbatim_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("rows");

        const QString replacement(QChar::ReplacementCharacter);
        const auto same = [](const char *name, const QString &text, int rows) {
            QTest::newRow(name) << text << text << rows;
        };
        same("empty", u""_s, 1);
        same("one line", u"¿Qué es la mitosis?"_s, 1);
        same("Markdown", u"# Uno\n- **dos**\n1. tres"_s, 3);
        same("markup", u"<img src='/a'> <b>x</b> &amp;"_s, 1);
        same("blanks around", u"  a \t\n\n b "_s, 3);
        same("ends with a line end", u"a\n"_s, 2);
        same("right to left", u"ما هو القلب؟\nfin"_s, 2);
        same("emoji", u"\U0001f468\u200d\u2695\ufe0f \U0001f600"_s, 1);
        QTest::newRow("CR LF") << u"a\r\nb"_s << u"a\nb"_s << 2;
        QTest::newRow("lone CR") << u"a\rb"_s << u"a b"_s << 1;
        QTest::newRow("NUL") << QString(u"a"_s + QChar(0) + u"b"_s) << u"a"_s + replacement + u"b"_s
                             << 1;
        QTest::newRow("escape") << u"a\u001b[31mb"_s << u"a"_s + replacement + u"[31mb"_s << 1;
        QTest::newRow("lone surrogates")
            << QString(QChar(0xde00)) + QChar(0xd83d) << replacement + replacement << 1;
    }
    void showsTheTextVerbatim()
    {
        QFETCH(QString, text);
        QFETCH(int, rows);
        Window window(text);
        QTEST(window.view().plainText(), "shown");
        // What is copied is what came, but for what ends its lines.
        window.view().selectAll();
        QCOMPARE(window.view().selectedText(), QString(text).replace(u"\r\n"_s, u"\n"_s));
        QCOMPARE(window.view().rowCount(), rows);
        QCOMPARE(window.view().implicitHeight(), rows * lineHeight());
        for (int row = 0; row < rows; ++row) {
            QCOMPARE(window.view().row(row).text().size, points);
            QCOMPARE(window.view().row(row).marker(), TextRow::Marker::none);
            for (const AttributedText::Run &run : window.view().row(row).text().runs)
                QCOMPARE(run.weight, QFont::Normal);
        }
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!window.grabWindow().isNull());
    }

    void wrapsAndIsNeverCut()
    {
        const QString text = u"palabra "_s.repeated(500);
        Window window(text);
        const auto &lines = window.view().row(0).lines();
        QVERIFY(lines.size() > 20);
        QCOMPARE(lines.last().start + lines.last().length, text.size());
        QCOMPARE(window.view().implicitHeight(), double(lines.size()) * lineHeight());
        QVERIFY(window.view().implicitWidth() <= wrapWidth);
    }

    void isAsWideAsItsWidestLine()
    {
        Window window(u"a\nmedia línea\nb"_s);
        QCOMPARE(window.view().implicitWidth(),
                 std::ceil(window.view().row(1).lines().first().width));
    }

    void copiesLinesAcrossRows()
    {
        Window window(u"uno\n\n  dos **tres**\ncuatro"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(3, 3));
        QTest::keySequence(&window, QKeySequence::SelectAll);
        QTest::keySequence(&window, QKeySequence::Copy);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"uno\n\n  dos **tres**\ncuatro"_s);
    }

    void selectsALineByATripleClick()
    {
        Window window(u"primera línea\nsegunda línea"_s);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const QPoint place(20, int(lineHeight() * 1.5));
        QTest::mouseDClick(&window, Qt::LeftButton, {}, place);
        QTest::mouseClick(&window, Qt::LeftButton, {}, place);
        QCOMPARE(window.view().selectedText(), u"segunda línea"_s);
    }

    void tellsAChangeOfTextAtOnce()
    {
        Window window(u"uno"_s);
        QSignalSpy told(&window.view(), &TextRowsItem::plainTextChanged);
        for (const QString &text : {u"dos"_s, u"dos\ntres"_s, u"dos\ntres\ncuatro"_s}) {
            window.view().setText(text);
            window.view().ensurePolished();
            QCOMPARE(window.view().plainText(), text);
        }
        QCOMPARE(told.size(), 3);
        QCOMPARE(QAbstractEventDispatcher::instance()->registeredTimers(&window.view()).size(), 0);
    }
};

QTEST_MAIN(PlainMessageViewTest)
#include "PlainMessageViewTest.moc"
