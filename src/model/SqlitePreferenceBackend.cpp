#include "SqlitePreferenceBackend.h"

#include "SqliteBlob.h"
#include "SqliteStatement.h"

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

/// How often a commit is tried when the database is damaged or replaced meanwhile.
constexpr int commitAttempts = 3;

/// Leaves what the owner may do as it is: a folder made read-only is meant to be.
void withdrawFromOthers(const QString &path)
{
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
        | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions permissions = QFile::permissions(path);
    if (permissions & others)
        QFile::setPermissions(path, permissions & ~others);
}

SqliteError ownError(const QString &description)
{
    return {0, description};
}

SqliteError folderError()
{
    return ownError(u"no se puede usar la carpeta de datos"_s);
}

/// The file was replaced or removed while it was used.
SqliteError replacementError()
{
    return ownError(u"otro programa está cambiando el archivo de datos"_s);
}

const QString damageReason = u"el archivo de datos estaba dañado"_s;

std::filesystem::path nativePath(const QString &path)
{
    return QFileInfo(path).filesystemFilePath();
}

/// Whether there is certainly no such file, which a folder that cannot be looked into leaves open.
bool isMissing(const QString &path)
{
    const auto stamp = FileStamp::of(path);
    return stamp && stamp->isMissing();
}

/// Something else than a file; opening it might wait for ever.
bool isNoFile(const QString &path)
{
    std::error_code error;
    const auto status = std::filesystem::status(nativePath(path), error);
    return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

} // namespace

SqlitePreferenceBackend::SqlitePreferenceBackend(QString path)
    : m_path(std::move(path))
{ }

SqlitePreferenceBackend::~SqlitePreferenceBackend()
{
    close();
}

std::variant<PreferenceBackend::Values, PreferenceReadError> SqlitePreferenceBackend::load()
{
    Values stored;
    FileStamp file;
    const auto failure = readAnyhow([&]() -> Failure {
        const auto found = FileStamp::of(databasePath());
        if (!found || m_connection->hasMoved())
            return replacementError();
        SqliteStatement statement(*m_connection,
                                  "SELECT key, value FROM preferences "
                                  "WHERE typeof(value) IN ('text', 'integer')");
        Values values;
        auto step = statement.step();
        for (; step == SqliteStatement::Step::row; step = statement.step()) {
            if (statement.isText(1))
                values.insert(statement.text(0), statement.text(1));
            else
                values.insert(statement.text(0), statement.integer(1) != 0);
        }
        if (step == SqliteStatement::Step::failed)
            return statement.error();
        stored = std::move(values);
        file = *found;
        return std::nullopt;
    });
    if (failure)
        return PreferenceReadError{failure->description};
    m_known = file;
    return stored;
}

std::variant<std::optional<QByteArray>, PreferenceReadError>
SqlitePreferenceBackend::data(const QString &key)
{
    std::optional<QByteArray> bytes;
    const auto failure = readAnyhow([&]() -> Failure {
        SqliteStatement statement(
            *m_connection,
            "SELECT rowid FROM preferences WHERE key = ? AND typeof(value) = 'blob'");
        statement.bind(1, key);
        const auto step = statement.step();
        if (step == SqliteStatement::Step::failed)
            return statement.error();
        if (step == SqliteStatement::Step::done)
            return std::nullopt;
        // The statement stays at its row meanwhile, so both see the same state of the database.
        auto opened = SqliteBlob::open(*m_connection, "preferences", "value", statement.integer(0));
        if (const auto *error = std::get_if<SqliteError>(&opened))
            return *error;
        const auto &blob = std::get<SqliteBlob>(opened);
        const QString path = databasePath();
        if (blob.size() > QFileInfo(path).size() + QFileInfo(path + logSuffix).size())
            return SqliteError::malformed();
        auto read = blob.read();
        if (const auto *error = std::get_if<SqliteError>(&read))
            return *error;
        bytes = std::get<QByteArray>(std::move(read));
        return std::nullopt;
    });
    if (failure)
        return PreferenceReadError{failure->description};
    return bytes;
}

std::optional<QString> SqlitePreferenceBackend::commit(const Values &changes,
                                                       const std::function<Values()> &others)
{
    Failure failure;
    for (int attempt = 0; attempt < commitAttempts; ++attempt) {
        failure = commitOnce(changes, others);
        if (!failure)
            return std::nullopt;
        if (failure->isMalformed()) {
            if (auto obstacle = moveAside(damageReason))
                failure = std::move(obstacle);
        } else if (!isDisplaced()) {
            break;
        }
    }
    close();
    return failure->description;
}

std::optional<QString> SqlitePreferenceBackend::deleteDamaged()
{
    for (const QString &path : {m_path, databasePath()}) {
        const QFileInfo file(path);
        QDir folder = file.dir();
        const QStringList names = folder.entryList({file.fileName() + asideInfix + u'*'},
                                                   QDir::AllEntries | QDir::Hidden | QDir::System);
        for (const QString &name : names) {
            std::error_code error;
            std::filesystem::remove_all(nativePath(folder.filePath(name)), error);
            if (error)
                return u"no se pueden borrar los datos dañados"_s;
        }
    }
    return std::nullopt;
}

QStringList SqlitePreferenceBackend::takeRepairs()
{
    return std::exchange(m_repairs, {});
}

/// Does `operation`, which only reads, even where nothing can be written, and succeeds without it
/// where there is no database.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::readAnyhow(const Operation &operation)
{
    Failure failure = readOrMoveAside(operation);
    const QString path = databasePath();
    if (!failure || isMissing(path))
        return std::nullopt;
    // Such a connection sees neither what is in the log nor what another program is changing.
    if (failure->isBusy() || QFileInfo(path + logSuffix).size() > 0)
        return failure;
    Failure readFailure = connectTo(SqliteConnection::Access::readUnchanging);
    if (!readFailure)
        readFailure = operation();
    close();
    return readFailure;
}

/// Does `operation` on the open database: after a failure anew on a new connection the next time,
/// and at once when the database was malformed and could be moved out of the way.
SqlitePreferenceBackend::Failure
SqlitePreferenceBackend::readOrMoveAside(const Operation &operation)
{
    const auto openAndRead = [&] {
        Failure failure = open();
        if (!failure)
            failure = operation();
        if (failure && failure->isMalformed() && m_connection && !m_connection->canReadFile())
            failure = SqliteError::unreadable();
        if (failure)
            close();
        return failure;
    };
    Failure failure = openAndRead();
    if (failure && failure->isMalformed() && !moveAside(damageReason))
        failure = openAndRead();
    return failure;
}

/// Commits to the database that is known, or to a new one where something else is in its place.
SqlitePreferenceBackend::Failure
SqlitePreferenceBackend::commitOnce(const Values &changes, const std::function<Values()> &others)
{
    if (isReplaced() || isOverwritten()) {
        if (auto failure = moveAside(u"otro programa cambió el archivo de datos"_s))
            return failure;
    }
    if (auto failure = open())
        return failure;
    if (isDisplaced())
        return replacementError();
    Values values = changes;
    if (m_lacksValues) {
        values = others();
        values.insert(changes);
    }
    if (auto failure = write(values))
        return failure;
    // What was committed to a file that is no longer there is not stored.
    if (isDisplaced())
        return replacementError();
    m_lacksValues = false;
    noteOwnWrites();
    return std::nullopt;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::write(const Values &changes)
{
    // A log that could not be emptied must not grow with every further try.
    if (!m_isLogEmpty) {
        if (auto failure = emptyLog())
            return failure;
    }
    if (auto failure = m_connection->execute("BEGIN IMMEDIATE"))
        return failure;
    const auto rollBack = [this](const SqliteError &error) {
        m_connection->execute("ROLLBACK");
        return error;
    };
    for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
        const bool isRemoval = std::holds_alternative<std::monostate>(*it);
        SqliteStatement statement(*m_connection,
                                  isRemoval
                                      ? "DELETE FROM preferences WHERE key = ?"
                                      : "INSERT INTO preferences(key, value) VALUES(?, ?) "
                                        "ON CONFLICT(key) DO UPDATE SET value = excluded.value");
        statement.bind(1, it.key());
        if (!isRemoval)
            statement.bind(2, *it);
        if (statement.step() == SqliteStatement::Step::failed)
            return rollBack(statement.error());
    }
    m_isLogEmpty = false;
    if (const auto error = m_connection->execute("COMMIT"))
        return rollBack(*error);
    return emptyLog();
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::emptyLog()
{
    SqliteStatement statement(*m_connection, "PRAGMA wal_checkpoint(TRUNCATE)");
    if (statement.step() != SqliteStatement::Step::row)
        return statement.error();
    const bool isBlocked = statement.integer(0) != 0;
    m_isLogEmpty = !isBlocked;
    if (isBlocked)
        return ownError(u"otro programa está leyendo los datos"_s);
    return std::nullopt;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::open()
{
    // SQLite would go on writing to a file that was deleted, and nobody would ever see it.
    if (m_connection && !m_connection->hasMoved())
        return std::nullopt;
    close();
    if (auto failure = makePrivateFile())
        return failure;
    const QString path = databasePath();
    const bool isKnown = m_known && m_known == FileStamp::of(path);
    if (auto failure = connectTo(SqliteConnection::Access::readWrite))
        return failure;
    // A history is one value over many pages, each a read of its own and none read twice: pages are
    // as large as can be, in a new database at least, and few of them (256 KiB) are kept.
    auto failure = m_connection->execute(
        "PRAGMA page_size=65536; PRAGMA cache_size=-256; PRAGMA journal_mode=WAL;"
        "PRAGMA synchronous=FULL; PRAGMA secure_delete=ON; PRAGMA wal_autocheckpoint=0;"
        "CREATE TABLE IF NOT EXISTS preferences(key TEXT PRIMARY KEY, value)");
    m_isLogEmpty = QFileInfo(path + logSuffix).size() == 0;
    m_dataVersion = m_connection->dataVersion();
    if (isKnown)
        noteOwnWrites();
    return failure;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::connectTo(SqliteConnection::Access access)
{
    const QString path = databasePath();
    if (isNoFile(path))
        return ownError(u"en el lugar del archivo de datos hay otra cosa"_s);
    auto opened = SqliteConnection::open(path, access);
    if (const auto *error = std::get_if<SqliteError>(&opened))
        return *error;
    m_connection = std::get<SqliteConnection>(std::move(opened));
    return std::nullopt;
}

/// Makes the folder and the file, if they are not there, before SQLite does: it would leave who
/// may read them to the process's file mode mask. Its own further files take the database's mode.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::makePrivateFile()
{
    const QString folder = QFileInfo(m_path).absolutePath();
    if (QFileInfo::exists(folder))
        withdrawFromOthers(folder);
    else if (!QDir().mkpath(folder) || !QFile::setPermissions(folder, privateFolder))
        return folderError();

    const QString path = databasePath();
    QFile file(path);
    if (!file.exists()) {
        if (!file.open(QFile::NewOnly | QFile::WriteOnly, privateFile)
            || !file.setPermissions(privateFile))
            return folderError();
        if (m_known && !m_known->isMissing())
            m_repairs.append(u"el archivo de datos no estaba en su lugar y se hizo otro"_s);
        m_known = FileStamp::of(file.handle());
        m_lacksValues = true;
    }
    withdrawFromOthers(path);
    for (const QString &suffix : {logSuffix, indexSuffix, journalSuffix})
        withdrawFromOthers(path + suffix);
    return std::nullopt;
}

void SqlitePreferenceBackend::close()
{
    if (!m_connection)
        return;
    const bool isOwn = !isDisplaced();
    if (!isOwn)
        m_connection->keepLogOnClose();
    m_connection.reset();
    // What was left in the log is now in the database.
    if (isOwn && !m_isLogEmpty)
        noteOwnWrites();
}

/// Whether another file than the known one is in its place. A missing one makes no difference: it
/// is made anew when it is opened.
bool SqlitePreferenceBackend::isReplaced() const
{
    const auto found = FileStamp::of(databasePath());
    return m_known && found && !found->isMissing() && !found->isSameFile(*m_known);
}

/// Whether the known file is no longer in its place, or not the one that is open.
bool SqlitePreferenceBackend::isDisplaced() const
{
    return isReplaced() || (m_connection && m_connection->hasMoved());
}

/// Whether another program has written to the known file, past SQLite.
bool SqlitePreferenceBackend::isOverwritten()
{
    const auto found = FileStamp::of(databasePath());
    if (!m_isLogEmpty || !m_known || !found || found->isMissing() || *found == *m_known)
        return false;
    return !m_connection || m_connection->dataVersion() == m_dataVersion;
}

/// Takes the state of the known file for this program's own doing.
void SqlitePreferenceBackend::noteOwnWrites()
{
    const QString path = databasePath();
    const auto found = FileStamp::of(path);
    if (!m_known || !found || !found->isSameFile(*m_known))
        return;
    m_known = found;
    m_knownLog = FileStamp::of(path + logSuffix);
    m_dataVersion = m_connection ? m_connection->dataVersion() : std::nullopt;
}

/// Keeps what is in the database's place under another name, because of `reason`, and leaves the
/// place free.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::moveAside(const QString &reason)
{
    const bool isKnownFile = !isReplaced();
    if (m_connection)
        m_connection->keepLogOnClose();
    m_connection.reset();
    // A link to a file stays where it is; one to anything else is moved itself.
    const QString path = isNoFile(m_path) ? m_path : databasePath();
    const QString target = path + asideInfix
        + QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd'T'HHmmsszzz'Z'"_s);
    std::error_code error;
    const bool isTaken
        = std::filesystem::exists(std::filesystem::symlink_status(nativePath(target)));
    if (!isTaken)
        std::filesystem::rename(nativePath(path), nativePath(target), error);
    if (isTaken || error)
        return ownError(u"no se puede apartar lo que hay en lugar del archivo de datos"_s);
    if (!isNoFile(target))
        withdrawFromOthers(target);

    // SQLite would apply to another database what is in this program's log.
    const auto log = FileStamp::of(path + logSuffix);
    const bool isForeignToFile = !isKnownFile && log && m_knownLog && log->isSameFile(*m_knownLog);
    if (isForeignToFile || (log && log->size == 0))
        QFile::remove(path + logSuffix);
    QFile::rename(path + logSuffix, target + logSuffix);
    QFile::rename(path + journalSuffix, target + journalSuffix);
    // SQLite makes the index anew.
    QFile::remove(path + indexSuffix);
    m_known = FileStamp();
    m_repairs.append(reason + u"; quedó guardado como "_s + QFileInfo(target).fileName());
    return std::nullopt;
}

QString SqlitePreferenceBackend::databasePath() const
{
    constexpr int longestChain = 40;
    QString path = m_path;
    for (int links = 0; links < longestChain && QFileInfo(path).isSymLink(); ++links)
        path = QFileInfo(path).symLinkTarget();
    return path;
}
