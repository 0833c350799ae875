#pragma once

#include "DatabaseFile.h"
#include "PreferenceBackend.h"
#include "SqliteConnection.h"
#include "SqliteError.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Preferences in an SQLite database: one table, `preferences(key TEXT PRIMARY KEY, value)`, with
/// bytes as BLOB, strings as TEXT and booleans as INTEGER. Folder and files are the user's alone.
///
/// A value that a commit replaced or removed leaves no trace: freed pages are overwritten, and the
/// log is copied into the database and emptied before the commit returns.
///
/// A file that SQLite calls malformed, or that another program replaced or wrote over, is moved
/// aside as `<file>.corrupt-<time>` and kept until the user clears the history, which deletes it as
/// well. A new database is made for it, as for a file that vanished, with every value that the
/// program holds. What another program commits through SQLite is no damage.
class SqlitePreferenceBackend : public PreferenceBackend
{
public:
    /// `path` names the database file; its folder is made when it is needed. Where it is a symbolic
    /// link, the database is what it leads to.
    explicit SqlitePreferenceBackend(QString path);
    ~SqlitePreferenceBackend() override;

    std::variant<Values, PreferenceReadError> load() override;
    std::variant<std::optional<QByteArray>, PreferenceReadError> data(const QString &key) override;
    std::optional<QString> commit(const Values &changes,
                                  const std::function<Values()> &others) override;
    std::optional<QString> deleteDamaged() override;
    QStringList takeRepairs() override;

private:
    /// What went wrong; nothing when all is well.
    using Failure = std::optional<SqliteError>;
    using Operation = std::function<Failure()>;

    Failure readAnyhow(const Operation &operation);
    Failure readOrMoveAside(const Operation &operation);
    Failure commitOnce(const Values &changes, const std::function<Values()> &others);
    Failure write(const Values &changes);
    Failure emptyLog();

    Failure open();
    Failure connectTo(SqliteConnection::Access access);
    void close();

    bool isDisplaced() const;
    bool isOverwritten();
    void noteOwnWrites();
    Failure moveAside(const QString &reason);

    DatabaseFile m_file;
    std::optional<SqliteConnection> m_connection;
    bool m_isLogEmpty = false;
    /// Of the open connection, when the state of the file was last noted.
    std::optional<int> m_dataVersion;
    /// The file is new and lacks values that the program holds.
    bool m_lacksValues = false;
    QStringList m_repairs;
};
