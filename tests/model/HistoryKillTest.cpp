#include "HistorySession.h"
#include "HistoryStore.h"
#include "PreferenceStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <limits>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Keeps the document near 1 MB, so that a commit takes long enough to be hit.
constexpr HistorySession session{
    .keptConversations = 20, .previewSize = 40'000, .linePause = 200us};

/// Of the victim's lines, before the number of a conversation that is on disk.
const QByteArray acknowledgement = "saved ";

void say(const QByteArray &line)
{
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

/// The victim: asks and saves until it is killed.
void streamReplies(const QString &path)
{
    const auto store = openStore(path);
    session.run(*store, std::numeric_limits<int>::max(),
                [](int number) { say(acknowledgement + QByteArray::number(number) + '\n'); });
}

/// The numbers that the victim acknowledged.
QSet<int> acknowledgedNumbers(const QByteArray &output)
{
    QSet<int> numbers;
    QList<QByteArray> lines = output.split('\n');
    lines.removeLast(); // Empty, or cut off by the kill.
    for (const QByteArray &line : lines) {
        if (line.startsWith(acknowledgement))
            numbers.insert(line.sliced(acknowledgement.size()).toInt());
    }
    return numbers;
}

} // namespace

/// Kills a program that streams replies, at moments chosen by chance, and looks at what it left.
/// AULORA_KILLS says how often.
class HistoryKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAcknowledgedSaveSurvives();
};

void HistoryKillTest::everyAcknowledgedSaveSurvives()
{
    constexpr int fewKills = 40;
    const int kills = qEnvironmentVariable("AULORA_KILLS", QString::number(fewKills)).toInt();
    QVERIFY(kills > 0);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"data/preferences.sqlite"_s);
    QRandomGenerator random(20'26);
    QSet<int> acknowledged;
    int losses = 0;
    qint64 slowestStart = 0;

    for (int kill = 0; kill < kills; ++kill) {
        QProcess victim;
        victim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        victim.start(QCoreApplication::applicationFilePath(), {u"--stream-replies"_s, path});
        QVERIFY(victim.waitForStarted());
        // One in four dies before it acknowledges anything, some of these while they start.
        QByteArray output;
        for (int lines = random.bounded(4); lines > 0; --lines) {
            while (!victim.canReadLine())
                QVERIFY(victim.waitForReadyRead());
            output += victim.readLine();
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random.bounded(100'000)));
        victim.kill();
        QVERIFY(victim.waitForFinished());
        QCOMPARE(victim.exitStatus(), QProcess::CrashExit);
        output += victim.readAllStandardOutput();
        acknowledged.unite(acknowledgedNumbers(output));

        QElapsedTimer timer;
        timer.start();
        const auto document = openStore(path)->data(HistoryStore::historyKey);
        slowestStart = std::max(slowestStart, timer.elapsed());
        if (const auto complaint = session.complaint(document.value_or("[]"), acknowledged)) {
            ++losses;
            qWarning("kill %d: %s", kill, qPrintable(*complaint));
        }
    }
    std::printf("%d kills, %lld acknowledged saves, slowest start %lld ms; lost: %d\n", kills,
                qlonglong(acknowledged.size()), slowestStart, losses);
    std::fflush(stdout);
    QCOMPARE(losses, 0);
    QVERIFY(acknowledged.size() > kills / 2);
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == u"--stream-replies"_s) {
        streamReplies(arguments[2]);
        return EXIT_SUCCESS;
    }
    HistoryKillTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "HistoryKillTest.moc"
