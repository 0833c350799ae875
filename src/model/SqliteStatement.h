#pragma once

#include "PreferenceValue.h"
#include "SqliteError.h"

#include <QString>

#include <memory>

class SqliteConnection;
struct sqlite3_stmt;

/// One SQL statement of a connection, which must outlive it.
class SqliteStatement
{
public:
    enum class Step { row, done, failed };

    /// The first step fails when the statement cannot be prepared, or when SQLite refuses a value,
    /// such as one of more than 1,000,000,000 bytes, which would otherwise be stored as NULL.
    SqliteStatement(SqliteConnection &connection, const char *sql);

    /// Sets the parameter at `index`, counted from 1, without a copy: the value must live until the
    /// last step. Bytes become a BLOB, text TEXT, a boolean INTEGER and no value NULL.
    void bind(int index, const QString &text);
    void bind(int index, const PreferenceValue &value);

    Step step();
    /// Why the last step failed.
    SqliteError error() const;

    /// Of the row that the last step came to; columns are counted from 0.
    QString text(int column) const;
    qint64 integer(int column) const;
    /// Whether the value is stored as TEXT.
    bool isText(int column) const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt *handle) const;
    };

    void noteBinding(int result);

    SqliteConnection &m_connection;
    bool m_isBound = true;
    std::unique_ptr<sqlite3_stmt, Finalize> m_handle;
};
