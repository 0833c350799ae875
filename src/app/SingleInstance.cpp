#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds connectTimeout = 2s;

/// A socket path may have about a hundred bytes, so the folder is named by its digest.
QString serverNameForFolder(const QString &folder)
{
    const QByteArray digest
        = QCryptographicHash::hash(QDir(folder).absolutePath().toUtf8(), QCryptographicHash::Sha256)
              .toHex()
              .left(16);
    return u"ar.aulora.AuloraIA-"_s + QString::fromLatin1(digest);
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, QObject *parent)
    : QObject(parent)
    , m_serverName(serverNameForFolder(folder))
    , m_lock(QDir(folder).filePath(u"instance.lock"_s))
{
    QDir().mkpath(folder);
    // Only a lock whose process has gone is stale, however old it is.
    m_lock.setStaleLockTime(0);
    m_isFirst = m_lock.tryLock(0) || m_lock.error() != QLockFile::LockFailedError;
    if (!m_isFirst)
        return;
    // What a killed instance left behind would make listening fail.
    QLocalServer::removeServer(m_serverName);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *launch = m_server.nextPendingConnection())
            launch->deleteLater();
        Q_EMIT raiseRequested();
    });
    m_server.listen(m_serverName);
}

void SingleInstance::raiseFirst() const
{
    QLocalSocket first;
    first.connectToServer(m_serverName);
    first.waitForConnected(int(connectTimeout.count()));
}
