#include "UserMemory.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

class UserMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheNewestFirstAndOnce()
    {
        UserMemory memory;
        QVERIFY(memory.subjects(u"u"_s).isEmpty());
        for (const auto &subject : {u"a"_s, u"b"_s, u"a"_s, u"c"_s})
            memory.remember(u"u"_s, subject);
        QCOMPARE(memory.subjects(u"u"_s), (QStringList{u"c"_s, u"a"_s, u"b"_s}));
        QVERIFY(memory.subjects(u"v"_s).isEmpty());
    }

    void keepsNothingEmpty()
    {
        UserMemory memory;
        memory.remember(u""_s, u"a"_s);
        memory.remember(u"u"_s, u""_s);
        QVERIFY(memory.subjects(u""_s).isEmpty());
        QVERIFY(memory.subjects(u"u"_s).isEmpty());
    }

    void boundsTheSubjects()
    {
        UserMemory memory;
        for (int i = 0; i < 20; ++i)
            memory.remember(u"u"_s, QString::number(i));
        QCOMPARE(memory.subjects(u"u"_s),
                 (QStringList{u"19"_s, u"18"_s, u"17"_s, u"16"_s, u"15"_s}));
    }

    void forgetsWhoHasBeenSilentLongest()
    {
        UserMemory memory;
        for (qsizetype i = 0; i < UserMemory::mostUsers; ++i)
            memory.remember(QString::number(i), u"a"_s);
        memory.remember(u"0"_s, u"b"_s);
        memory.remember(u"new"_s, u"a"_s);
        QCOMPARE(memory.subjects(u"0"_s), (QStringList{u"b"_s, u"a"_s}));
        QVERIFY(memory.subjects(u"1"_s).isEmpty());
        QCOMPARE(memory.subjects(u"2"_s), QStringList{u"a"_s});
    }

    void servesManyThreads()
    {
        UserMemory memory;
        std::vector<std::jthread> threads;
        threads.reserve(8);
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([&memory, t] {
                for (int i = 0; i < 2000; ++i) {
                    memory.remember(QString::number(i % 500), QString::number(t));
                    memory.subjects(QString::number(i % 500));
                }
            });
        }
        threads.clear();
        const auto subjects = memory.subjects(u"499"_s);
        QCOMPARE(subjects.size(), UserMemory::mostSubjects);
        QCOMPARE(QSet<QString>(subjects.begin(), subjects.end()).size(), subjects.size());
    }
};

QTEST_APPLESS_MAIN(UserMemoryTest)
#include "UserMemoryTest.moc"
