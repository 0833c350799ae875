#pragma once

#include "SqliteError.h"

#include <QByteArray>

#include <memory>
#include <variant>

class SqliteConnection;
struct sqlite3_blob;

/// One stored BLOB, open for reading. Its bytes are read from the pages into one buffer; a
/// statement's column would first copy them into a buffer of SQLite's own.
class SqliteBlob
{
public:
    /// The value in `column` of the row `rowId` of `table`; an error when it is no BLOB.
    static std::variant<SqliteBlob, SqliteError>
    open(SqliteConnection &connection, const char *table, const char *column, qint64 rowId);

    /// In bytes, as the row says; in a damaged database that may be any number up to a gigabyte.
    qint64 size() const;
    std::variant<QByteArray, SqliteError> read() const;

private:
    struct Close
    {
        void operator()(sqlite3_blob *handle) const;
    };

    SqliteBlob(SqliteConnection &connection, sqlite3_blob *handle)
        : m_connection(&connection)
        , m_handle(handle)
    { }

    SqliteConnection *m_connection;
    std::unique_ptr<sqlite3_blob, Close> m_handle;
};
