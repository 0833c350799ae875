#include "ChatPaneScene.h"
#include "MarkdownMessageView.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// What is read in the first line at the top of a pane: of which reply, from which character on.
struct LineAtTop
{
    qsizetype reply = -1;
    qsizetype row = -1;
    qsizetype start = 0;
    qsizetype end = 0;

    bool holds(const LineAtTop &other) const
    {
        return reply == other.reply && row == other.row && start <= other.start
            && other.start < end;
    }
    QString toString() const
    {
        return u"reply %1, row %2, %3 to %4"_s.arg(reply).arg(row).arg(start).arg(end);
    }
};

LineAtTop lineAtTop(const ChatPaneScene &scene)
{
    const auto replies = itemsOfType(scene.pane(), "MarkdownMessageView");
    for (qsizetype i = 0; i < replies.size(); ++i) {
        const auto *text = qobject_cast<MarkdownMessageView *>(replies.at(i));
        const double y = text->mapFromItem(scene.pane(), QPointF()).y();
        if (y < 0 || y >= text->height())
            continue;
        qsizetype row = text->rowCount() - 1;
        while (text->rowTop(row) > y)
            --row;
        const auto &lines = text->row(row).lines();
        qsizetype line = lines.size() - 1;
        while (line > 0 && text->rowTop(row) + lines.at(line).top > y)
            --line;
        return {.reply = i,
                .row = row,
                .start = lines.at(line).start,
                .end = lines.at(line).start + lines.at(line).length};
    }
    return {};
}

/// Lets a frame be painted of a pane that has got its size.
void paint(ChatPaneScene &scene)
{
    QTRY_COMPARE(scene.pane()->size().toSize(), scene.view().size());
    QSignalSpy painted(&scene.view(), &QQuickWindow::frameSwapped);
    scene.view().update();
    QTRY_VERIFY(!painted.isEmpty());
}

} // namespace

/// The list of messages in a real window: its geometry, its two observers, its activity row.
class ChatPaneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsABubbleForEveryMessage()
    {
        ChatPaneScene scene;
        scene.show({question(u"Hola"_s), reply(u"# Título\nTexto"_s), question(u""_s)});
        QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
        QCOMPARE(scene.bubbles().size(), 3);
        QCOMPARE(scene.warnings(), u""_s);
    }

    void holdsHostileMessages_data()
    {
        QTest::addColumn<QString>("text");

        QTest::newRow("a million characters without a blank") << QString(1'000'000, u'x');
        QTest::newRow("ten thousand lines") << u"- **línea** con texto\n"_s.repeated(10'000);
        QTest::newRow("right to left without blanks") << QString(100'000, u'ب');
        QTest::newRow("marks by the hundred")
            << (u"e"_s + QString(300, QChar(0x301))).repeated(500);
        QTest::newRow("control characters") << QString(100'000, QChar(0));
        QTest::newRow("lone surrogates") << QString(100'000, QChar(0xd800));
        QTest::newRow("markup") << u"<img src='file:///dev/random'><table><td>&lt;"_s.repeated(
            2'000);
        QTest::newRow("direction overrides") << u"\u202eabc\u2067def\u202d"_s.repeated(5'000);
    }
    void holdsHostileMessages()
    {
        QFETCH(QString, text);
        ChatPaneScene scene;
        scene.show({question(text), reply(text), question(u"fin"_s)});
        QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
        const auto bubbles = scene.bubbles();
        QCOMPARE(bubbles.size(), 3);
        for (const QQuickItem *bubble : bubbles) {
            QVERIFY(bubble->height() > 0);
            QCOMPARE(bubble->width(), scene.view().width() - 64.0);
        }
        const double end
            = scene.pane()->property("contentHeight").toDouble() - scene.pane()->height();
        QVERIFY(end > 1'000);
        for (const double place : {0.0, end / 3, end}) {
            scene.pane()->setProperty("contentY", place);
            QVERIFY(!scene.view().grabWindow().isNull());
        }
        QCOMPARE(scene.warnings(), u""_s);
    }

    void keepsTheLineAtTheTop_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("textScale");

        QTest::newRow("narrower") << QSize(500, 600) << 1.0;
        QTest::newRow("wider") << QSize(1200, 600) << 1.0;
        QTest::newRow("lower") << QSize(763, 300) << 1.0;
        QTest::newRow("higher") << QSize(763, 900) << 1.0;
        QTest::newRow("narrower and lower") << QSize(500, 400) << 1.0;
        QTest::newRow("larger text") << QSize(763, 600) << 1.15;
        QTest::newRow("smaller text") << QSize(763, 600) << 0.9;
    }
    void keepsTheLineAtTheTop()
    {
        QFETCH(QSize, size);
        QFETCH(double, textScale);
        const QString paragraph
            = u"La insuficiencia cardíaca es un síndrome clínico frecuente. "_s.repeated(12)
            + u'\n';
        ChatPaneScene scene;
        // Here it need not follow what is new.
        itemsOfType(scene.pane(), "BottomScroller")
            .constFirst()
            ->setProperty("end", QVariant::fromValue<QQuickItem *>(nullptr));
        scene.show({question(u"Uno"_s), reply(paragraph.repeated(12)), question(u"Dos"_s),
                    reply(paragraph.repeated(12))});
        QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
        paint(scene);
        for (const double place : {200.0, 777.0, 1500.0}) {
            scene.pane()->setProperty("contentY", place);
            paint(scene);
            const LineAtTop before = lineAtTop(scene);
            QVERIFY(before.reply >= 0);

            scene.view().resize(size);
            scene.view().rootObject()->setProperty("textScale", textScale);
            paint(scene);
            const LineAtTop there = lineAtTop(scene);
            QVERIFY2(there.holds(before),
                     qPrintable(before.toString() + u" became "_s + there.toString()));

            scene.view().resize(763, 600);
            scene.view().rootObject()->setProperty("textScale", 1.0);
            paint(scene);
            const LineAtTop back = lineAtTop(scene);
            QVERIFY2(back.holds(before),
                     qPrintable(before.toString() + u" came back as "_s + back.toString()));
        }
    }

    // Else each piece of a long reply would copy all that came before.
    void growingTextIsSharedWithNobody()
    {
        ChatPaneScene scene;
        scene.show({question(u"Hola"_s), reply(u"Uno\n"_s)});
        QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
        QQuickItem *bubble = scene.bubbles().at(1);
        QString expected = u"Uno\n"_s;
        for (const QString &piece : {u"dos"_s, u"\ntr"_s, u"es\n"_s}) {
            scene.appendText(piece);
            expected += piece;
            QTRY_COMPARE(bubble->property("messageText").toString(), expected);
            QVERIFY(!scene.view().grabWindow().isNull());
            QVERIFY(scene.messages().at(1).text.isDetached());
            QVERIFY(itemWithText(bubble, expected));
        }
        QCOMPARE(scene.warnings(), u""_s);
    }
};

QTEST_MAIN(ChatPaneTest)
#include "ChatPaneTest.moc"
