#include "SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <future>
#include <memory>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using Outcome = SingleInstance::Outcome;

namespace {

/// With this argument this program takes the lock of the folder it is called with, prints a line,
/// and never answers another launch.
const QString holderArgument = u"--hold"_s;

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_runtimeFolder;

    /// Another process that holds the lock of `folder`.
    static std::unique_ptr<QProcess> startHolder(const QString &folder)
    {
        auto holder = std::make_unique<QProcess>();
        holder->start(QCoreApplication::applicationFilePath(), {holderArgument, folder});
        return holder->waitForReadyRead() ? std::move(holder) : nullptr;
    }

    static void writeLockFile(const QString &folder, const QByteArray &contents)
    {
        QFile lock(QDir(folder).filePath(u"instance.lock"_s));
        QVERIFY(lock.open(QIODevice::WriteOnly));
        lock.write(contents);
    }

private Q_SLOTS:
    void initTestCase() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtimeFolder.path())); }

    void secondRaisesTheFirst()
    {
        const QTemporaryDir folder;
        SingleInstance first(folder.path());
        QCOMPARE(first.claim(), Outcome::First);
        QSignalSpy raised(&first, &SingleInstance::raiseRequested);

        auto second = std::async(std::launch::async,
                                 [path = folder.path()] { return SingleInstance(path).claim(); });
        QTRY_COMPARE(raised.count(), 1);
        QTRY_VERIFY(second.wait_for(std::chrono::seconds(0)) == std::future_status::ready);
        QCOMPARE(second.get(), Outcome::RaisedOther);
    }

    void foldersAreIndependent()
    {
        const QTemporaryDir one;
        const QTemporaryDir other;
        SingleInstance first(one.path());
        SingleInstance second(other.path());
        QCOMPARE(first.claim(), Outcome::First);
        QCOMPARE(second.claim(), Outcome::First);
    }

    void isFirstAgainAfterTheFirstEnded()
    {
        const QTemporaryDir folder;
        {
            SingleInstance first(folder.path());
            QCOMPARE(first.claim(), Outcome::First);
        }
        SingleInstance next(folder.path());
        QCOMPARE(next.claim(), Outcome::First);
    }

    void theLockFilesContentDoesNotMatter_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("of a process that runs")
            << "1\naulora-ia\n" + QSysInfo::machineHostName().toUtf8() + "\n";
        QTest::newRow("of another computer") << QByteArray("1\naulora-ia\nanother-computer\n");
        QTest::newRow("garbage") << QByteArray(5000, '\xff');
    }
    void theLockFilesContentDoesNotMatter()
    {
        QFETCH(QByteArray, contents);
        const QTemporaryDir folder;
        writeLockFile(folder.path(), contents);
        SingleInstance first(folder.path());
        QCOMPARE(first.claim(), Outcome::First);
    }

    void killedHolderGivesTheLockBack()
    {
        const QTemporaryDir folder;
        const auto holder = startHolder(folder.path());
        QVERIFY(holder);
        holder->kill();
        QVERIFY(holder->waitForFinished());
        SingleInstance next(folder.path());
        QCOMPARE(next.claim(), Outcome::First);
    }

    void takesOverWhenTheHolderEnds()
    {
        const QTemporaryDir folder;
        const auto holder = startHolder(folder.path());
        QVERIFY(holder);
        auto next = std::async(std::launch::async,
                               [path = folder.path()] { return SingleInstance(path).claim(); });
        QCOMPARE(next.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
        holder->kill();
        QVERIFY(holder->waitForFinished());
        QCOMPARE(next.get(), Outcome::First);
    }

    void endingHolderIsWaitedFor()
    {
        const QTemporaryDir folder;
        std::optional<SingleInstance> first(std::in_place, folder.path());
        QCOMPARE(first->claim(), Outcome::First);
        first->stopListening();
        auto next = std::async(std::launch::async,
                               [path = folder.path()] { return SingleInstance(path).claim(); });
        QCOMPARE(next.wait_for(std::chrono::milliseconds(2500)), std::future_status::timeout);
        first.reset();
        QCOMPARE(next.get(), Outcome::First);
    }

    void reportsAHolderThatDoesNotAnswer()
    {
        const QTemporaryDir folder;
        const auto holder = startHolder(folder.path());
        QVERIFY(holder);
        QElapsedTimer time;
        time.start();
        SingleInstance next(folder.path());
        QCOMPARE(next.claim(), Outcome::NoAnswer);
        QVERIFY(time.elapsed() >= 2000);
        holder->kill();
        holder->waitForFinished();
    }

    void reportsAStoppedHolder()
    {
        const QTemporaryDir folder;
        const auto holder = startHolder(folder.path());
        QVERIFY(holder);
        QCOMPARE(::kill(pid_t(holder->processId()), SIGSTOP), 0);
        SingleInstance next(folder.path());
        QCOMPARE(next.claim(), Outcome::NoAnswer);
        holder->kill();
        holder->waitForFinished();
    }

    void socketIsInTheRuntimeFolder()
    {
        const QTemporaryDir folder;
        SingleInstance first(folder.path());
        QCOMPARE(first.claim(), Outcome::First);
        QVERIFY(!QDir(m_runtimeFolder.path())
                     .entryList({u"aulora-ia-*"_s}, QDir::System | QDir::Files)
                     .isEmpty());
    }

    void makesItsFolder()
    {
        const QTemporaryDir folder;
        const QString missing = QDir(folder.path()).filePath(u"a/b"_s);
        SingleInstance first(missing);
        QCOMPARE(first.claim(), Outcome::First);
        QVERIFY(QFile::exists(missing + u"/instance.lock"_s));
    }

    void runsWhereNoLockCanBeMade()
    {
        SingleInstance first(u"/dev/null/no-folder"_s);
        QCOMPARE(first.claim(), Outcome::First);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == holderArgument) {
        SingleInstance instance(arguments.value(2));
        if (instance.claim() != Outcome::First)
            return 1;
        std::puts("held");
        std::fflush(stdout);
        // Its event loop does not run, so it answers nobody.
        std::this_thread::sleep_for(std::chrono::minutes(1));
        return 0;
    }
    SingleInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SingleInstanceTest.moc"
