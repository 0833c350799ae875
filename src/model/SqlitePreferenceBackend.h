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
/// What a commit replaced or removed leaves no trace: freed pages are overwritten, and the log is
/// folded into the database and emptied before the commit returns.
///
/// A database that SQLite calls malformed, and whatever another program has put into the place of
/// the one that was read, or written over it, is moved aside as `<file>.corrupt-<time>`, never
/// overwritten, and kept until its owner clears the history: then nothing of it may stay, nor in
/// such a file. The database that takes its place, or that of one that vanished, holds all that the
/// program does. What another program commits through SQLite is not taken for damage.
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
    /// The file is new, and holds less than the program does.
    bool m_lacksValues = false;
    QStringList m_repairs;
};
