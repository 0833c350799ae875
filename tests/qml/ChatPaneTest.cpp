#include "ChatPaneScene.h"

#include <QTest>
#include <QTranslator>

using namespace Qt::StringLiterals;

/// A language in which every text stands in brackets.
class Brackets : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *source, const char *, int) const override
    {
        return u'[' + QString::fromUtf8(source) + u']';
    }
};

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

    void translatesItsOwnWordsAndNoOnesElse()
    {
        Brackets brackets;
        QCoreApplication::installTranslator(&brackets);
        ChatPaneScene scene;
        scene.show({question(u"Hola"_s), reply(u""_s)});
        QVERIFY(QTest::qWaitForWindowExposed(&scene.view()));
        QQuickItem *pane = scene.pane();
        QTRY_VERIFY(itemWithText(pane, u"[Escribiendo…]"_s));
        QVERIFY(itemWithText(pane, u"[A]"_s));
        QVERIFY(itemWithText(pane, u"[Aulora IA]"_s));
        QVERIFY(itemWithText(pane, u"Hola"_s));
    }
};

QTEST_MAIN(ChatPaneTest)
#include "ChatPaneTest.moc"
