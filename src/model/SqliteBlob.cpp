#include "SqliteBlob.h"

#include "SqliteConnection.h"

#include <sqlite3.h>

std::variant<SqliteBlob, SqliteError>
SqliteBlob::open(SqliteConnection &connection, const char *table, const char *column, qint64 rowId)
{
    constexpr int readOnly = 0;
    sqlite3_blob *handle = nullptr;
    if (sqlite3_blob_open(connection.handle(), "main", table, column, rowId, readOnly, &handle)
        != SQLITE_OK)
        return SqliteError::of(connection.handle());
    return SqliteBlob(connection, handle);
}

qint64 SqliteBlob::size() const
{
    return sqlite3_blob_bytes(m_handle.get());
}

std::variant<QByteArray, SqliteError> SqliteBlob::read() const
{
    QByteArray bytes(size(), Qt::Uninitialized);
    if (sqlite3_blob_read(m_handle.get(), bytes.data(), int(bytes.size()), 0) != SQLITE_OK)
        return SqliteError::of(m_connection->handle());
    return bytes;
}

void SqliteBlob::Close::operator()(sqlite3_blob *handle) const
{
    sqlite3_blob_close(handle);
}
