#include "SqliteConnection.h"

#include "SqliteStatement.h"

#include <QUrl>

#include <algorithm>
#include <array>
#include <sqlite3.h>
#include <utility>

using namespace Qt::StringLiterals;

std::variant<SqliteConnection, SqliteError> SqliteConnection::open(const QString &path,
                                                                   Access access)
{
    QUrl url = QUrl::fromLocalFile(path);
    if (access == Access::readUnchanging)
        url.setQuery(u"immutable=1"_s);
    // Without SQLITE_OPEN_CREATE, which would create a missing file with the rights that the umask
    // leaves.
    const int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX
        | (access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(url.toEncoded().constData(), &handle, flags, nullptr);
    // A failed call gives a handle to close, too.
    SqliteConnection connection(handle);
    if (result != SQLITE_OK)
        return SqliteError::of(handle);
    constexpr int longestWait = 1'000;
    sqlite3_busy_timeout(handle, longestWait);
    return connection;
}

std::optional<SqliteError> SqliteConnection::execute(const char *statements)
{
    if (sqlite3_exec(handle(), statements, nullptr, nullptr, nullptr) == SQLITE_OK)
        return std::nullopt;
    return SqliteError::of(handle());
}

bool SqliteConnection::hasMoved() const
{
    int hasMoved = 0;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    return hasMoved != 0;
}

bool SqliteConnection::canReadFile() const
{
    sqlite3_file *file = nullptr;
    sqlite3_int64 size = 0;
    if (sqlite3_file_control(handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK
        || file->pMethods->xFileSize(file, &size) != SQLITE_OK)
        return false;
    std::array<char, 65'536> buffer;
    for (sqlite3_int64 offset = 0; offset < size; offset += buffer.size()) {
        const auto length = std::min<sqlite3_int64>(buffer.size(), size - offset);
        if (file->pMethods->xRead(file, buffer.data(), int(length), offset) != SQLITE_OK)
            return false;
    }
    return true;
}

std::optional<int> SqliteConnection::dataVersion()
{
    SqliteStatement statement(*this, "PRAGMA data_version");
    if (statement.step() != SqliteStatement::Step::row)
        return std::nullopt;
    return int(statement.integer(0));
}

void SqliteConnection::keepLogOnClose()
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

void SqliteConnection::Close::operator()(sqlite3 *handle) const
{
    sqlite3_close_v2(handle);
}
