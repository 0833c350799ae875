#include "SqliteDatabase.h"

#include <QFile>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

// What another process may take to write.
static constexpr int busyMilliseconds = 10'000;

// The library would make the file readable for others; what it makes beside it takes its rights
// from this one.
static bool makePrivate(const QByteArray &path)
{
    constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
    const int file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
    if (file < 0)
        return false;
    const bool isPrivate = ::fchmod(file, ownerOnly) == 0;
    ::close(file);
    return isPrivate;
}

void SqliteDatabase::Close::operator()(sqlite3 *database) const
{
    sqlite3_close_v2(database);
}

bool SqliteDatabase::open(const QString &file)
{
    const QByteArray path = file.isEmpty() ? QByteArray(":memory:") : QFile::encodeName(file);
    if (!file.isEmpty() && !makePrivate(path)) {
        m_problem = u"no se puede abrir el archivo"_s;
        return false;
    }
    sqlite3 *opened = nullptr;
    const int result = sqlite3_open_v2(
        path.constData(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
        nullptr);
    m_database.reset(opened);
    if (result != SQLITE_OK) {
        m_problem = QString::fromUtf8(sqlite3_errstr(result));
        return false;
    }
    sqlite3_busy_timeout(opened, busyMilliseconds);
    return true;
}

static void bind(sqlite3_stmt *statement, int place, const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QByteArray>()) {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob64(statement, place, bytes.constData(),
                            static_cast<sqlite3_uint64>(bytes.size()), SQLITE_TRANSIENT);
    } else if (value.metaType() == QMetaType::fromType<QString>()) {
        const QByteArray text = value.toString().toUtf8();
        sqlite3_bind_text64(statement, place, text.constData(),
                            static_cast<sqlite3_uint64>(text.size()), SQLITE_TRANSIENT,
                            SQLITE_UTF8);
    } else {
        sqlite3_bind_int64(statement, place, value.toLongLong());
    }
}

static QVariant columnValue(sqlite3_stmt *statement, int column)
{
    const auto size = [&] { return qsizetype{sqlite3_column_bytes(statement, column)}; };
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return qint64{sqlite3_column_int64(statement, column)};
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(statement, column)),
                          size());
    case SQLITE_TEXT:
        return QString::fromUtf8(
            reinterpret_cast<const char *>(sqlite3_column_text(statement, column)), size());
    default:
        return {};
    }
}

std::optional<SqliteDatabase::Rows> SqliteDatabase::run(const char *statement,
                                                        const QList<QVariant> &values)
{
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(m_database.get(), statement, -1, &prepared, nullptr) != SQLITE_OK) {
        m_problem = QString::fromUtf8(sqlite3_errmsg(m_database.get()));
        return std::nullopt;
    }
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(prepared,
                                                                           sqlite3_finalize);
    for (qsizetype i = 0; i < values.size(); ++i)
        bind(prepared, static_cast<int>(i) + 1, values[i]);

    Rows rows;
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(prepared)) == SQLITE_ROW) {
        QList<QVariant> row;
        for (int column = 0; column < sqlite3_column_count(prepared); ++column)
            row += columnValue(prepared, column);
        rows += row;
    }
    if (result == SQLITE_DONE)
        return rows;
    m_problem = QString::fromUtf8(sqlite3_errmsg(m_database.get()));
    return std::nullopt;
}

QString SqliteDatabase::problem() const
{
    return m_problem;
}

SqliteTransaction::SqliteTransaction(SqliteDatabase &database)
    : m_database(database)
    , m_hasBegun(database.run("begin immediate").has_value())
{ }

SqliteTransaction::~SqliteTransaction()
{
    if (m_hasBegun)
        m_database.run("rollback");
}

bool SqliteTransaction::commit()
{
    if (!m_hasBegun || !m_database.run("commit"))
        return false;
    m_hasBegun = false;
    return true;
}
