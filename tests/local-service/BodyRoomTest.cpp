#include "BodyRoom.h"

#include <QTest>

class BodyRoomTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void givesNoMoreThanThereIs()
    {
        BodyRoom room(100);
        BodyRoom::Share first(room);
        QVERIFY(first.growTo(60));
        BodyRoom::Share second(room);
        QVERIFY(second.growTo(30));
        QVERIFY(!second.growTo(41));
        // Nothing is left of what was refused.
        QVERIFY(first.growTo(100));
        QVERIFY(!second.growTo(1));
    }

    void takesOnlyWhatIsMore()
    {
        BodyRoom room(100);
        BodyRoom::Share share(room);
        QVERIFY(share.growTo(-5));
        for (int bytes = 0; bytes <= 100; ++bytes)
            QVERIFY(share.growTo(bytes));
        QVERIFY(share.growTo(50));
        QVERIFY(!share.growTo(101));
    }

    void hasRoomAgainOnceAShareIsGone()
    {
        BodyRoom room(100);
        for (int i = 0; i < 3; ++i) {
            BodyRoom::Share share(room);
            QVERIFY(share.growTo(100));
        }
    }
};

QTEST_APPLESS_MAIN(BodyRoomTest)
#include "BodyRoomTest.moc"
