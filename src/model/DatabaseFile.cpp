#include "DatabaseFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QFile::Permissions privateFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions privateFolder = privateFile | QFile::ExeOwner;

/// What may stand beside the database: the log and its index, or the journal that another program
/// uses in their place.
const QString logSuffix = u"-wal"_s;
const QString indexSuffix = u"-shm"_s;
const QString journalSuffix = u"-journal"_s;

/// Between the database's name and the time at which it was moved aside.
const QString asideInfix = u".corrupt-"_s;

/// Takes the rights of group and others away. The owner's stay: a folder made read-only is meant to
/// be.
void withdrawFromOthers(const QString &path)
{
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions permissions = QFile::permissions(path);
    if (permissions & others)
        QFile::setPermissions(path, permissions & ~others);
}

std::filesystem::path nativePath(const QString &path)
{
    return QFileInfo(path).filesystemFilePath();
}

bool isNoFile(const QString &path)
{
    std::error_code error;
    const auto status = std::filesystem::status(nativePath(path), error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace

DatabaseFile::DatabaseFile(QString path)
    : m_path(std::move(path))
{ }

QString DatabaseFile::path() const
{
    constexpr int longestChain = 40;
    QString path = m_path;
    for (int links = 0; links < longestChain && QFileInfo(path).isSymLink(); ++links)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

bool DatabaseFile::isMissing() const
{
    const auto stamp = FileStamp::of(path());
    return stamp && stamp->isMissing();
}

bool DatabaseFile::isSomethingElse() const
{
    return isNoFile(path());
}

qint64 DatabaseFile::size() const
{
    return QFileInfo(path()).size() + logSize();
}

qint64 DatabaseFile::logSize() const
{
    return QFileInfo(path() + logSuffix).size();
}

DatabaseFile::Presence DatabaseFile::makePrivate()
{
    const QString folder = QFileInfo(m_path).absolutePath();
    if (QFileInfo::exists(folder))
        withdrawFromOthers(folder);
    else if (!QDir().mkpath(folder) || !QFile::setPermissions(folder, privateFolder))
        return Presence::unusable;

    Presence presence = Presence::found;
    QFile file(path());
    if (!file.exists()) {
        if (!file.open(QFile::NewOnly | QFile::WriteOnly, privateFile)
            || !file.setPermissions(privateFile))
            return Presence::unusable;
        m_known = FileStamp::of(file.handle());
        presence = Presence::made;
    }
    for (const QString &suffix : {QString(), logSuffix, indexSuffix, journalSuffix})
        withdrawFromOthers(file.fileName() + suffix);
    return presence;
}

void DatabaseFile::setKnown(const FileStamp &stamp)
{
    m_known = stamp;
}

void DatabaseFile::noteOwnWrites()
{
    const auto found = FileStamp::of(path());
    if (!m_known || !found || !found->isSameFile(*m_known))
        return;
    m_known = found;
    m_knownLog = FileStamp::of(path() + logSuffix);
}

bool DatabaseFile::isReplaced() const
{
    const auto found = FileStamp::of(path());
    return m_known && found && !found->isMissing() && !found->isSameFile(*m_known);
}

bool DatabaseFile::isAsNoted() const
{
    return m_known && m_known == FileStamp::of(path());
}

bool DatabaseFile::isChanged() const
{
    const auto found = FileStamp::of(path());
    return m_known && found && found->isSameFile(*m_known) && *found != *m_known;
}

std::optional<QString> DatabaseFile::moveAside()
{
    const bool isKnownFile = !isReplaced();
    // A link to a file stays where it is; one to anything else is moved itself.
    const QString from = isNoFile(m_path) ? m_path : path();
    const QString to = from + asideInfix
        + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd'T'HHmmsszzz'Z'"_s);
    if (std::filesystem::exists(std::filesystem::symlink_status(nativePath(to))))
        return std::nullopt;
    std::error_code error;
    std::filesystem::rename(nativePath(from), nativePath(to), error);
    if (error)
        return std::nullopt;
    if (!isNoFile(to))
        withdrawFromOthers(to);

    // SQLite would replay this program's log into the file that took the place of its own.
    const auto log = FileStamp::of(from + logSuffix);
    const bool isForeignToFile = !isKnownFile && log && m_knownLog && log->isSameFile(*m_knownLog);
    if (isForeignToFile || (log && log->size == 0))
        QFile::remove(from + logSuffix);
    QFile::rename(from + logSuffix, to + logSuffix);
    QFile::rename(from + journalSuffix, to + journalSuffix);
    // SQLite makes the index anew.
    QFile::remove(from + indexSuffix);
    m_known = FileStamp();
    return QFileInfo(to).fileName();
}

bool DatabaseFile::deleteAside() const
{
    for (const QString &path : {m_path, path()}) {
        const QFileInfo file(path);
        const QDir folder = file.dir();
        const QStringList names = folder.entryList({file.fileName() + asideInfix + u'*'},
                                                   QDir::AllEntries | QDir::Hidden | QDir::System);
        for (const QString &name : names) {
            std::error_code error;
            std::filesystem::remove_all(nativePath(folder.filePath(name)), error);
            if (error)
                return false;
        }
    }
    return true;
}
