#pragma once

#include "SqliteError.h"

#include <QString>

#include <memory>
#include <optional>
#include <variant>

struct sqlite3;

/// An open SQLite database. Used by one thread at a time.
class SqliteConnection
{
public:
    enum class Access {
        readWrite,
        /// Reads a file that nobody changes, which also works where no log or index can be created.
        readUnchanging,
    };

    /// Opens the database in the existing file `path`. Calls wait up to a second for another
    /// program that is using it.
    static std::variant<SqliteConnection, SqliteError> open(const QString &path, Access access);

    /// Runs statements whose rows are of no interest, up to the first that fails.
    std::optional<SqliteError> execute(const char *statements);

    /// Whether the file that was opened is no longer the one under its name.
    bool hasMoved() const;

    /// Whether every byte of the file can be read. SQLite may call a file malformed when it is the
    /// disk that fails.
    bool canReadFile() const;

    /// Changes whenever another connection has committed something; nothing when that fails.
    std::optional<int> dataVersion();

    /// Closing then leaves the log and its index alone: files of these names may belong to another
    /// database by now.
    void keepLogOnClose();

    sqlite3 *handle() const { return m_handle.get(); }

private:
    struct Close
    {
        void operator()(sqlite3 *handle) const;
    };

    explicit SqliteConnection(sqlite3 *handle)
        : m_handle(handle)
    { }

    std::unique_ptr<sqlite3, Close> m_handle;
};
