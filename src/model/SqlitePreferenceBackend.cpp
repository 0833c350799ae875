#include "SqlitePreferenceBackend.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>
#include <QVariant>

#include <array>
#include <filesystem>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QFile::Permissions privateFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions privateFolder = privateFile | QFile::ExeOwner;

/// The database, and the log and its index that SQLite keeps beside it.
const std::array fileSuffixes{QString(), u"-wal"_s, u"-shm"_s};

/// Between the database's name and the time at which it was moved aside.
const QString asideInfix = u".corrupt-"_s;

/// Leaves what the owner may do as it is: a folder made read-only is meant to be.
void withdrawFromOthers(const QString &path)
{
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions permissions = QFile::permissions(path);
    if (permissions & others)
        QFile::setPermissions(path, permissions & ~others);
}

QSqlError folderError()
{
    return {{}, u"no se puede usar la carpeta de datos"_s, QSqlError::ConnectionError};
}

/// SQLite's own code of an error, without the upper bits that tell variants of it apart.
int sqliteCode(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & 0xFF;
}

bool isMalformed(const QSqlError &error)
{
    constexpr int corrupt = 11;
    constexpr int notADatabase = 26;
    return sqliteCode(error) == corrupt || sqliteCode(error) == notADatabase;
}

bool isBusy(const QSqlError &error)
{
    constexpr int busy = 5;
    return sqliteCode(error) == busy;
}

/// Whether there is certainly no such file, which a folder that cannot be looked into leaves open.
bool isMissing(const QString &path)
{
    std::error_code error;
    const auto status = std::filesystem::status(QFileInfo(path).filesystemFilePath(), error);
    return status.type() == std::filesystem::file_type::not_found;
}

QString describe(const QSqlError &error)
{
    return error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
}

/// The value as SQLite is to store it. A null text or buffer would be stored as NULL.
QVariant bindable(const PreferenceValue &value)
{
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return bytes->isNull() ? QByteArray("") : *bytes;
    if (const auto *text = std::get_if<QString>(&value))
        return text->isNull() ? u""_s : *text;
    return int(std::get<bool>(value));
}

} // namespace

SqlitePreferenceBackend::SqlitePreferenceBackend(QString path)
    : m_path(std::move(path))
    , m_connectionName(u"preferences-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces))
{ }

SqlitePreferenceBackend::~SqlitePreferenceBackend()
{
    close();
}

std::variant<PreferenceBackend::Scalars, PreferenceReadError> SqlitePreferenceBackend::load()
{
    const auto failure = readAnyhow([this]() -> Failure {
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        if (!query.exec(u"SELECT key, value, typeof(value) FROM preferences "
                        "WHERE typeof(value) IN ('text', 'integer')"_s))
            return query.lastError();
        Scalars scalars;
        while (query.next()) {
            const QVariant value = query.value(1);
            if (query.value(2) == u"text"_s)
                scalars.insert(query.value(0).toString(), value.toString());
            else
                scalars.insert(query.value(0).toString(), value.toLongLong() != 0);
        }
        if (query.lastError().isValid())
            return query.lastError();
        m_scalars = std::move(scalars);
        return std::nullopt;
    });
    if (failure)
        return PreferenceReadError{describe(*failure)};
    return m_scalars;
}

std::variant<std::optional<QByteArray>, PreferenceReadError>
SqlitePreferenceBackend::data(const QString &key)
{
    std::optional<QByteArray> bytes;
    const auto failure = readAnyhow([this, &key, &bytes]() -> Failure {
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        query.prepare(u"SELECT value FROM preferences WHERE key = ? AND typeof(value) = 'blob'"_s);
        query.addBindValue(key);
        if (!query.exec())
            return query.lastError();
        if (query.next())
            bytes = query.value(0).toByteArray();
        else if (query.lastError().isValid())
            return query.lastError();
        return std::nullopt;
    });
    if (failure)
        return PreferenceReadError{describe(*failure)};
    return bytes;
}

std::optional<QString>
SqlitePreferenceBackend::commit(const QHash<QString, PreferenceValue> &changes)
{
    if (const auto failure = attempt([this, &changes] { return write(changes); }))
        return describe(*failure);
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        if (std::holds_alternative<QString>(*it) || std::holds_alternative<bool>(*it))
            m_scalars.insert(it.key(), *it);
        else
            m_scalars.remove(it.key());
    }
    return std::nullopt;
}

std::optional<QString> SqlitePreferenceBackend::deleteDamaged()
{
    const QFileInfo file(m_path);
    QDir folder = file.dir();
    const QStringList names = folder.entryList({file.fileName() + asideInfix + u'*'}, QDir::Files);
    for (const QString &name : names) {
        if (!folder.remove(name))
            return u"no se pueden borrar los datos dañados"_s;
    }
    return std::nullopt;
}

/// Does `operation`, which only reads, even where nothing can be written, and succeeds without it
/// where there is no database.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::readAnyhow(const Operation &operation)
{
    Failure failure = attempt(operation);
    if (!failure || isMissing(m_path))
        return std::nullopt;
    // Such a connection sees neither what is in the log nor what another program is changing.
    if (isBusy(*failure) || QFileInfo(m_path + u"-wal"_s).size() > 0)
        return failure;
    QUrl url = QUrl::fromLocalFile(m_path);
    url.setQuery(u"immutable=1"_s);
    Failure readFailure
        = connectTo(url.toString(QUrl::FullyEncoded), u"QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY;"_s);
    if (!readFailure)
        readFailure = operation();
    close();
    return readFailure;
}

/// Does `operation` on the open database: after a failure anew on a new connection the next time,
/// and at once when the database was malformed and could be moved out of the way.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::attempt(const Operation &operation)
{
    const auto openAndOperate = [&] {
        Failure failure = open();
        if (!failure)
            failure = operation();
        if (failure)
            close();
        return failure;
    };
    Failure failure = openAndOperate();
    if (failure && isMalformed(*failure) && moveAside())
        failure = openAndOperate();
    return failure;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::open()
{
    // SQLite would go on writing to a file that was deleted, and nobody would ever see it.
    const bool isNew = !QFileInfo::exists(m_path);
    if (m_database.isOpen() && !isNew)
        return std::nullopt;
    close();
    if (auto failure = makePrivateFile())
        return failure;
    if (auto failure = connectTo(m_path, {}))
        return failure;
    // A history is one value over many pages, each a read of its own and none read twice: pages are
    // as large as can be, in a new database at least, and few of them (256 KiB) are kept.
    for (const QString &statement :
         {u"PRAGMA page_size=65536"_s, u"PRAGMA cache_size=-256"_s, u"PRAGMA journal_mode=WAL"_s,
          u"PRAGMA synchronous=FULL"_s, u"PRAGMA secure_delete=ON"_s,
          u"PRAGMA wal_autocheckpoint=0"_s,
          u"CREATE TABLE IF NOT EXISTS preferences(key TEXT PRIMARY KEY, value)"_s}) {
        QSqlQuery query(m_database);
        if (!query.exec(statement))
            return query.lastError();
    }
    m_isLogEmpty = false;
    return isNew && !m_scalars.isEmpty() ? write(m_scalars) : std::nullopt;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::connectTo(const QString &name,
                                                                    const QString &options)
{
    m_database = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_connectionName);
    m_database.setDatabaseName(name);
    // Other programs may look into the database, but not for long.
    m_database.setConnectOptions(options + u"QSQLITE_BUSY_TIMEOUT=1000"_s);
    return m_database.open() ? std::nullopt : Failure(m_database.lastError());
}

/// Makes the folder and the file, if they are not there, before SQLite does: it would leave who
/// may read them to the process's file mode mask. Its own further files take the database's mode.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::makePrivateFile() const
{
    const QString folder = QFileInfo(m_path).absolutePath();
    if (QFileInfo::exists(folder))
        withdrawFromOthers(folder);
    else if (!QDir().mkpath(folder) || !QFile::setPermissions(folder, privateFolder))
        return folderError();

    QFile file(m_path);
    if (!file.exists()
        && (!file.open(QFile::NewOnly | QFile::WriteOnly, privateFile)
            || !file.setPermissions(privateFile)))
        return folderError();
    for (const QString &suffix : fileSuffixes)
        withdrawFromOthers(m_path + suffix);
    return std::nullopt;
}

SqlitePreferenceBackend::Failure
SqlitePreferenceBackend::write(const QHash<QString, PreferenceValue> &changes)
{
    // A log that could not be emptied must not grow with every further try.
    if (!m_isLogEmpty) {
        if (auto failure = emptyLog())
            return failure;
    }
    if (!m_database.transaction())
        return m_database.lastError();
    QSqlQuery query(m_database);
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        const bool isRemoval = std::holds_alternative<std::monostate>(*it);
        query.prepare(isRemoval ? u"DELETE FROM preferences WHERE key = ?"_s
                                : u"INSERT INTO preferences(key, value) VALUES(?, ?) "
                                  "ON CONFLICT(key) DO UPDATE SET value = excluded.value"_s);
        query.addBindValue(it.key());
        if (!isRemoval)
            query.addBindValue(bindable(*it));
        if (!query.exec()) {
            const QSqlError error = query.lastError();
            m_database.rollback();
            return error;
        }
    }
    query.finish();
    m_isLogEmpty = false;
    if (!m_database.commit()) {
        const QSqlError error = m_database.lastError();
        m_database.rollback();
        return error;
    }
    return emptyLog();
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::emptyLog()
{
    QSqlQuery query(m_database);
    if (!query.exec(u"PRAGMA wal_checkpoint(TRUNCATE)"_s) || !query.next())
        return query.lastError();
    const bool isBlocked = query.value(0).toBool();
    m_isLogEmpty = !isBlocked;
    if (isBlocked)
        return QSqlError({}, u"otro programa está leyendo los datos"_s,
                         QSqlError::TransactionError);
    return std::nullopt;
}

void SqlitePreferenceBackend::close()
{
    if (!m_database.isValid())
        return;
    m_database.close();
    m_database = {};
    QSqlDatabase::removeDatabase(m_connectionName);
}

/// Keeps what could not be used under another name; true when the path is free now.
bool SqlitePreferenceBackend::moveAside()
{
    close();
    const QString target = m_path + asideInfix
        + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd'T'HHmmsszzz'Z'"_s);
    if (!QFile::rename(m_path, target))
        return false;
    for (const QString &suffix : {u"-wal"_s, u"-shm"_s})
        QFile::rename(m_path + suffix, target + suffix);
    qWarning("A malformed preference database was moved to %ls", qUtf16Printable(target));
    return true;
}
