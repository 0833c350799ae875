#include "ChatPaneScene.h"

#include <QTest>

using namespace Qt::StringLiterals;

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
};

QTEST_MAIN(ChatPaneTest)
#include "ChatPaneTest.moc"
