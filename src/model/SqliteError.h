#pragma once

#include <QString>

struct sqlite3;

/// Why SQLite could not do something.
struct SqliteError
{
    /// SQLite's result code without the upper bits that tell variants of it apart; 0 where the
    /// error is not SQLite's own.
    int code = 0;
    /// One line, in SQLite's English or in the interface's Spanish.
    QString description;

    /// The last error of `connection`, which is null where there was no memory for it.
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
