#include "SingleInstance.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondRaisesTheFirst()
    {
        const QTemporaryDir folder;
        const SingleInstance first(folder.path());
        QVERIFY(first.isFirst());
        QSignalSpy raised(&first, &SingleInstance::raiseRequested);

        const SingleInstance second(folder.path());
        QVERIFY(!second.isFirst());
        second.raiseFirst();
        QTRY_COMPARE(raised.count(), 1);
    }

    void foldersAreIndependent()
    {
        const QTemporaryDir one;
        const QTemporaryDir other;
        const SingleInstance first(one.path());
        const SingleInstance second(other.path());
        QVERIFY(first.isFirst());
        QVERIFY(second.isFirst());
    }

    void nextIsFirstAgainAfterTheFirstLeft()
    {
        const QTemporaryDir folder;
        {
            const SingleInstance first(folder.path());
            QVERIFY(first.isFirst());
        }
        const SingleInstance next(folder.path());
        QVERIFY(next.isFirst());
    }

    void lockOfADeadProcessDoesNotCount()
    {
        const QTemporaryDir folder;
        // No process has this number: it is past the largest that a system gives out.
        QFile lock(QDir(folder.path()).filePath(u"instance.lock"_s));
        QVERIFY(lock.open(QIODevice::WriteOnly));
        lock.write("2147483646\naulora-ia\n" + QSysInfo::machineHostName().toUtf8() + "\n");
        lock.close();
        const SingleInstance first(folder.path());
        QVERIFY(first.isFirst());
    }

    void makesItsFolder()
    {
        const QTemporaryDir folder;
        const QString missing = QDir(folder.path()).filePath(u"a/b"_s);
        const SingleInstance first(missing);
        QVERIFY(first.isFirst());
        QVERIFY(QFile::exists(missing + u"/instance.lock"_s));
    }

    void runsWhereNoLockCanBeMade()
    {
        const SingleInstance first(u"/dev/null/no-folder"_s);
        QVERIFY(first.isFirst());
    }
};

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
