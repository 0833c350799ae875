#include "ConversationCoding.h"
#include "HistoryStore.h"
#include "PreferenceStore.h"
#include "SqlitePreferenceBackend.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// Keeps the document near 1 MB, so that a commit takes long enough to be hit.
constexpr qsizetype keptConversations = 20;
constexpr qsizetype previewSize = 40'000;
constexpr auto linePause = 200us;

std::unique_ptr<PreferenceStore> openStore(const QString &path)
{
    return std::make_unique<PreferenceStore>(std::make_unique<SqlitePreferenceBackend>(path));
}

/// The number of a conversation, which its title spells.
int number(const Conversation &conversation)
{
    return conversation.title.toInt();
}

void say(const QByteArray &line)
{
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

/// The victim: asks one question after another, streams the replies and saves at the moments at
/// which the program does. "saved N" says that conversation N is on disk with its whole reply.
[[noreturn]] void streamReplies(const QString &path)
{
    const auto store = openStore(path);
    HistoryStore historyStore(store.get());
    QList<Conversation> conversations = historyStore.load();
    int next = conversations.isEmpty() ? 1 : number(conversations.first()) + 1;
    for (;; ++next) {
        conversations.prepend({QUuid::createUuid(), QString::number(next), {}});
        if (conversations.size() > keptConversations)
            conversations.removeLast();
        historyStore.save(conversations);

        QList<ChatMessage> &messages = conversations.first().messages;
        messages.append({QUuid::createUuid(), u"¿Pregunta?"_s, true, u"rx.jpg"_s,
                         QByteArray(previewSize, char(next))});
        historyStore.save(conversations);

        messages.append({QUuid::createUuid(), QString(), false, std::nullopt, std::nullopt});
        for (int line = 0; line < next % 50; ++line) {
            messages.last().text.append(u"Línea %1\n"_s.arg(line));
            std::this_thread::sleep_for(linePause);
        }
        messages.last().text.append(u"Fin"_s);
        historyStore.save(conversations);
        // Three of four saves stay unacknowledged and overlap with what follows.
        if (next % 4 == 0 && store->flush())
            say("saved " + QByteArray::number(next) + '\n');
    }
}

/// The numbers that the victim acknowledged.
QSet<int> acknowledgedNumbers(const QByteArray &output)
{
    QSet<int> numbers;
    QList<QByteArray> lines = output.split('\n');
    lines.removeLast(); // Empty, or cut off by the kill.
    for (const QByteArray &line : lines) {
        if (line.startsWith("saved "))
            numbers.insert(line.sliced(6).toInt());
    }
    return numbers;
}

} // namespace

/// Kills a program that streams replies, at moments chosen by chance, and looks at what it left.
class HistoryKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAcknowledgedSaveSurvives();
};

void HistoryKillTest::everyAcknowledgedSaveSurvives()
{
    const int kills = qEnvironmentVariableIntValue("AULORA_KILLS");
    QVERIFY2(kills > 0, "AULORA_KILLS says how often to kill");
    constexpr qint64 longestStart = 2'000;
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"data/preferences.sqlite"_s);
    QRandomGenerator random(20'26);
    QSet<int> acknowledged;
    int newest = 0;
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
        for (const int saved : acknowledgedNumbers(output)) {
            acknowledged.insert(saved);
            newest = std::max(newest, saved);
        }

        QElapsedTimer timer;
        timer.start();
        const auto store = openStore(path);
        const auto document = store->data(HistoryStore::historyKey);
        const auto decoded = decodeConversations(document.value_or("[]"));
        slowestStart = std::max(slowestStart, timer.elapsed());
        QVERIFY2(timer.elapsed() < longestStart, qPrintable(u"kill %1"_s.arg(kill)));
        const auto *conversations = std::get_if<QList<Conversation>>(&decoded);
        QVERIFY2(conversations, qPrintable(u"kill %1"_s.arg(kill)));
        if (acknowledged.isEmpty())
            continue;

        QVERIFY(!conversations->isEmpty());
        const int first = number(conversations->first());
        QVERIFY2(first >= newest, qPrintable(u"kill %1"_s.arg(kill)));
        for (qsizetype i = 0; i < conversations->size(); ++i) {
            const Conversation &conversation = conversations->at(i);
            QCOMPARE(number(conversation), first - i);
            if (!acknowledged.contains(number(conversation)))
                continue;
            QCOMPARE(conversation.messages.size(), 2);
            QCOMPARE(conversation.messages[0].imagePreviewData,
                     QByteArray(previewSize, char(number(conversation))));
            QVERIFY(conversation.messages[1].text.endsWith(u"Fin"_s));
        }
    }
    qInfo("%d kills, %d conversations, slowest start %lld ms", kills, newest, slowestStart);
    QVERIFY(acknowledged.size() > kills / 2);
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == u"--stream-replies"_s)
        streamReplies(arguments[2]);
    HistoryKillTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "HistoryKillTest.moc"
