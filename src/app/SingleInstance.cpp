#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto answerTimeout = 2s;
/// A little more than the five seconds that a program has for its end.
constexpr auto endTimeout = 6s;
/// How long to wait at the socket before trying the lock again.
constexpr auto lookInterval = 50ms;

/// A socket's path has room for about 100 bytes, so it holds a digest of the data folder's path.
QString socketPathFor(const QString &dataFolder)
{
    const QByteArray path = QDir(dataFolder).absolutePath().toUtf8();
    const QByteArray digest
        = QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex().left(16);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/aulora-ia-"_s
        + QString::fromLatin1(digest);
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, QObject *parent)
    : QObject(parent)
    , m_folder(folder)
    , m_socketPath(socketPathFor(folder))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *launch = m_server.nextPendingConnection())
            answer(launch);
    });
}

SingleInstance::~SingleInstance()
{
    // The file is not removed: one process could lock the removed file and another a new one.
    if (m_lockFile >= 0)
        ::close(m_lockFile);
}

SingleInstance::Outcome SingleInstance::claim()
{
    QDir().mkpath(m_folder);
    QLocalSocket first;
    const QDeadlineTimer answerDeadline(answerTimeout);
    const QDeadlineTimer endDeadline(endTimeout);
    // The process that holds the lock may end meanwhile, or not listen yet.
    do {
        if (takeLock()) {
            listen();
            return Outcome::First;
        }
        if (first.state() == QLocalSocket::UnconnectedState)
            first.connectToServer(m_socketPath);
        if (first.state() == QLocalSocket::UnconnectedState)
            std::this_thread::sleep_for(lookInterval);
        else if (first.waitForReadyRead(int(lookInterval / 1ms)))
            return Outcome::RaisedOther;
    } while (first.state() == QLocalSocket::UnconnectedState ? !endDeadline.hasExpired()
                                                             : !answerDeadline.hasExpired());
    return Outcome::NoAnswer;
}

bool SingleInstance::takeLock()
{
    if (m_lockFile < 0) {
        const QByteArray path = QFile::encodeName(QDir(m_folder).filePath(u"instance.lock"_s));
        m_lockFile = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    }
    return m_lockFile < 0 || ::flock(m_lockFile, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void SingleInstance::listen()
{
    // Remove the socket of a killed instance, with which listening fails.
    QLocalServer::removeServer(m_socketPath);
    m_server.listen(m_socketPath);
}

void SingleInstance::stopListening()
{
    m_server.close();
}

void SingleInstance::answer(QLocalSocket *launch)
{
    connect(launch, &QLocalSocket::disconnected, launch, &QObject::deleteLater);
    // Any byte will do: it says that this program's event loop runs.
    launch->write("\n");
    Q_EMIT raiseRequested();
}
