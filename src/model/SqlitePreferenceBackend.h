#pragma once

#include "PreferenceBackend.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>

#include <functional>
#include <optional>

/// Preferences in an SQLite database: one table, `preferences(key TEXT PRIMARY KEY, value)`, with
/// bytes as BLOB, strings as TEXT and booleans as INTEGER. Folder and files are the user's alone.
///
/// What a commit replaced or removed leaves no trace: freed pages are overwritten, and the log is
/// folded into the database and emptied before the commit returns.
///
/// A file that SQLite calls malformed is moved aside as `<file>.corrupt-<time>`, never overwritten,
/// and kept until its owner clears the history: then nothing of it may stay, nor in such a file.
/// The database that takes the place of a moved or vanished one begins with the strings and
/// booleans known so far.
class SqlitePreferenceBackend : public PreferenceBackend
{
public:
    /// `path` names the database file; its folder is made when it is needed.
    explicit SqlitePreferenceBackend(QString path);
    ~SqlitePreferenceBackend() override;

    std::variant<Scalars, PreferenceReadError> load() override;
    std::variant<std::optional<QByteArray>, PreferenceReadError> data(const QString &key) override;
    std::optional<QString> commit(const QHash<QString, PreferenceValue> &changes) override;
    std::optional<QString> deleteDamaged() override;

private:
    /// What went wrong; nothing when all is well.
    using Failure = std::optional<QSqlError>;
    using Operation = std::function<Failure()>;

    Failure readAnyhow(const Operation &operation);
    Failure attempt(const Operation &operation);
    Failure open();
    Failure connectTo(const QString &name, const QString &options);
    Failure makePrivateFile() const;
    Failure write(const QHash<QString, PreferenceValue> &changes);
    Failure emptyLog();
    void close();
    bool moveAside();

    QString m_path;
    QString m_connectionName;
    QSqlDatabase m_database;
    Scalars m_scalars;
    bool m_isLogEmpty = false;
};
