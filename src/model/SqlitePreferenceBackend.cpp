#include "SqlitePreferenceBackend.h"

#include "SqliteBlob.h"
#include "SqliteStatement.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// How often a commit is tried when the database is damaged or replaced meanwhile.
constexpr int commitAttempts = 3;

SqliteError ownError(const QString &description)
{
    return {0, description};
}

/// The file was replaced or removed while it was used.
SqliteError replacementError()
{
    return ownError(u"otro programa está cambiando el archivo de datos"_s);
}

const QString damageReason = u"el archivo de datos estaba dañado"_s;

} // namespace

SqlitePreferenceBackend::SqlitePreferenceBackend(QString path)
    : m_file(std::move(path))
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
        const auto found = FileStamp::of(m_file.path());
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
    m_file.setKnown(file);
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
        if (blob.size() > m_file.size())
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
    // A busy connection stays open: only by it can another program's commit be told from a write
    // past SQLite.
    if (!failure->isBusy())
        close();
    return failure->description;
}

std::optional<QString> SqlitePreferenceBackend::deleteDamaged()
{
    if (m_file.deleteAside())
        return std::nullopt;
    return u"no se pueden borrar los datos dañados"_s;
}

QStringList SqlitePreferenceBackend::takeRepairs()
{
    return std::exchange(m_repairs, {});
}

/// Runs `operation`, which only reads, also where nothing can be written. Without a database it
/// succeeds and runs nothing.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::readAnyhow(const Operation &operation)
{
    Failure failure = readOrMoveAside(operation);
    if (!failure || m_file.isMissing())
        return std::nullopt;
    // A connection for reading only sees neither the log nor another program's changes.
    if (failure->isBusy() || m_file.logSize() > 0)
        return failure;
    Failure readFailure = connectTo(SqliteConnection::Access::readUnchanging);
    if (!readFailure)
        readFailure = operation();
    close();
    return readFailure;
}

/// Runs `operation` on the open database. A failure closes the connection, and the next call opens
/// another one. After a malformed database was moved aside, the operation is run again at once.
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
    // A disk that fails once looks like damage, too; damage is there again.
    if (failure && failure->isMalformed())
        failure = openAndRead();
    if (failure && failure->isMalformed() && !moveAside(damageReason))
        failure = openAndRead();
    return failure;
}

/// Commits to the database that is known, or to a new one where something else is in its place.
SqlitePreferenceBackend::Failure
SqlitePreferenceBackend::commitOnce(const Values &changes, const std::function<Values()> &others)
{
    if (m_file.isReplaced() || isOverwritten()) {
        if (auto failure = moveAside(u"otro programa cambió el archivo de datos"_s))
            return failure;
    }
    if (auto failure = open()) {
        // A connection that is set up in part must not count as open.
        close();
        return failure;
    }
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
    const bool wasThere = m_file.wasThere();
    switch (m_file.makePrivate()) {
    case DatabaseFile::Presence::found:
        break;
    case DatabaseFile::Presence::made:
        if (wasThere)
            m_repairs.append(u"el archivo de datos no estaba en su lugar y se hizo otro"_s);
        m_lacksValues = true;
        break;
    case DatabaseFile::Presence::unusable:
        return ownError(u"no se puede usar la carpeta de datos"_s);
    }
    const bool isAsNoted = m_file.isAsNoted();
    if (auto failure = connectTo(SqliteConnection::Access::readWrite))
        return failure;
    // A history is one value over many pages, each read once and by a system call of its own. So a
    // new database has the largest pages there are, and the cache is small (256 KiB).
    auto failure = m_connection->execute(
        "PRAGMA page_size=65536; PRAGMA cache_size=-256; PRAGMA journal_mode=WAL;"
        "PRAGMA synchronous=FULL; PRAGMA secure_delete=ON; PRAGMA wal_autocheckpoint=0;"
        "CREATE TABLE IF NOT EXISTS preferences(key TEXT PRIMARY KEY, value)");
    m_isLogEmpty = m_file.logSize() == 0;
    m_dataVersion = m_connection->dataVersion();
    if (isAsNoted)
        noteOwnWrites();
    return failure;
}

SqlitePreferenceBackend::Failure SqlitePreferenceBackend::connectTo(SqliteConnection::Access access)
{
    if (m_file.isSomethingElse())
        return ownError(u"en el lugar del archivo de datos hay otra cosa"_s);
    auto opened = SqliteConnection::open(m_file.path(), access);
    if (const auto *error = std::get_if<SqliteError>(&opened))
        return *error;
    m_connection = std::get<SqliteConnection>(std::move(opened));
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

/// Whether the known file is no longer in its place, or not the one that is open.
bool SqlitePreferenceBackend::isDisplaced() const
{
    return m_file.isReplaced() || (m_connection && m_connection->hasMoved());
}

/// Whether another program has written to the known file, past SQLite.
bool SqlitePreferenceBackend::isOverwritten()
{
    return m_isLogEmpty && m_file.isChanged()
        && (!m_connection || m_connection->dataVersion() == m_dataVersion);
}

/// Notes the present state of the file as written by this program.
void SqlitePreferenceBackend::noteOwnWrites()
{
    m_file.noteOwnWrites();
    m_dataVersion = m_connection ? m_connection->dataVersion() : std::nullopt;
}

/// Moves the database aside, so that a new one can be made. `reason` says what was found.
SqlitePreferenceBackend::Failure SqlitePreferenceBackend::moveAside(const QString &reason)
{
    if (m_connection)
        m_connection->keepLogOnClose();
    m_connection.reset();
    const auto name = m_file.moveAside();
    if (!name)
        return ownError(u"no se puede apartar lo que hay en lugar del archivo de datos"_s);
    m_repairs.append(reason + u"; quedó guardado como "_s + *name);
    return std::nullopt;
}
