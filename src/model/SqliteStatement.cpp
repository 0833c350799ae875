#include "SqliteStatement.h"

#include "SqliteConnection.h"

#include <QByteArray>

#include <sqlite3.h>

namespace {

/// SQLite stores a null pointer as NULL, whatever it is bound as.
const void *nonNull(const void *data)
{
    return data ? data : "";
}

} // namespace

SqliteStatement::SqliteStatement(SqliteConnection &connection, const char *sql)
    : m_connection(connection)
{
    sqlite3_stmt *handle = nullptr;
    sqlite3_prepare_v2(connection.handle(), sql, -1, &handle, nullptr);
    m_handle.reset(handle);
}

void SqliteStatement::bind(int index, const QString &text)
{
    noteBinding(sqlite3_bind_text64(
        m_handle.get(), index, static_cast<const char *>(nonNull(text.constData())),
        sqlite3_uint64(text.size()) * sizeof(QChar), SQLITE_STATIC, SQLITE_UTF16));
}

void SqliteStatement::bind(int index, const PreferenceValue &value)
{
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        noteBinding(sqlite3_bind_blob64(m_handle.get(), index, nonNull(bytes->constData()),
                                        sqlite3_uint64(bytes->size()), SQLITE_STATIC));
    else if (const auto *text = std::get_if<QString>(&value))
        bind(index, *text);
    else if (const auto *flag = std::get_if<bool>(&value))
        noteBinding(sqlite3_bind_int(m_handle.get(), index, *flag ? 1 : 0));
}

void SqliteStatement::noteBinding(int result)
{
    m_isBound = m_isBound && result == SQLITE_OK;
}

SqliteStatement::Step SqliteStatement::step()
{
    if (!m_handle || !m_isBound)
        return Step::failed;
    switch (sqlite3_step(m_handle.get())) {
    case SQLITE_ROW:
        return Step::row;
    case SQLITE_DONE:
        return Step::done;
    default:
        return Step::failed;
    }
}

SqliteError SqliteStatement::error() const
{
    return SqliteError::of(m_connection.handle());
}

QString SqliteStatement::text(int column) const
{
    // In this order: asking for the text may convert it, and change its size.
    const void *data = sqlite3_column_text16(m_handle.get(), column);
    const int size = sqlite3_column_bytes16(m_handle.get(), column);
    return QString(static_cast<const QChar *>(data), size / qsizetype(sizeof(QChar)));
}

qint64 SqliteStatement::integer(int column) const
{
    return sqlite3_column_int64(m_handle.get(), column);
}

bool SqliteStatement::isText(int column) const
{
    return sqlite3_column_type(m_handle.get(), column) == SQLITE_TEXT;
}

void SqliteStatement::Finalize::operator()(sqlite3_stmt *handle) const
{
    sqlite3_finalize(handle);
}
