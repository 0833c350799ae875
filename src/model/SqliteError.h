#pragma once

#include <QString>

struct sqlite3;

/// Why SQLite could not do something.
struct SqliteError
{
    /// SQLite's primary result code; 0 for an error that is not SQLite's.
    int code = 0;
    /// One line, in SQLite's English or in the interface's Spanish.
    QString description;

    /// The last error of `connection`; null stands for a connection that SQLite had no memory for.
    static SqliteError of(sqlite3 *connection);

    /// What SQLite says of a broken database.
    static SqliteError malformed();
    /// What SQLite says of a disk that fails.
    static SqliteError unreadable();

    /// The file is no database, or a broken one.
    bool isMalformed() const;
    /// Another program keeps the database for itself.
    bool isBusy() const;
};
