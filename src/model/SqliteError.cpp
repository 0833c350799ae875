#include "SqliteError.h"

#include <sqlite3.h>

SqliteError SqliteError::of(sqlite3 *connection)
{
    return {sqlite3_errcode(connection) & 0xFF, QString::fromUtf8(sqlite3_errmsg(connection))};
}

SqliteError SqliteError::malformed()
{
    return {SQLITE_CORRUPT, QString::fromUtf8(sqlite3_errstr(SQLITE_CORRUPT))};
}

SqliteError SqliteError::unreadable()
{
    return {SQLITE_IOERR, QString::fromUtf8(sqlite3_errstr(SQLITE_IOERR))};
}

bool SqliteError::isMalformed() const
{
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

bool SqliteError::isBusy() const
{
    return code == SQLITE_BUSY;
}
