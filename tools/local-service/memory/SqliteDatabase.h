#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

struct sqlite3;

/// One connection to a database. Everything says whether it worked; nothing throws. For one thread
/// at a time.
class SqliteDatabase
{
public:
    /// The rows of an answer, each with its columns: numbers (qint64), texts and byte arrays.
    using Rows = QList<QList<QVariant>>;

    /// Opens `file`, which is made for its owner alone when there is none; in memory when empty.
    /// False when that fails; `problem()` says why.
    bool open(const QString &file);

    /// Runs one statement with `values` in the place of its question marks. Nothing when it fails.
    std::optional<Rows> run(const char *statement, const QList<QVariant> &values = {});

    /// Why the last thing failed, in the words of the library, which quotes no value.
    QString problem() const;

private:
    struct Close
    {
        void operator()(sqlite3 *database) const;
    };
    std::unique_ptr<sqlite3, Close> m_database;
    QString m_problem;
};

/// Takes back what was written since it was made, unless it was committed. Nothing that another
/// process writes comes between.
class SqliteTransaction
{
public:
    /// `database` is borrowed and outlives this object.
    explicit SqliteTransaction(SqliteDatabase &database);
    ~SqliteTransaction();
    Q_DISABLE_COPY_MOVE(SqliteTransaction)

    /// False when nothing may be written now.
    bool hasBegun() const { return m_hasBegun; }
    /// Whether everything is written.
    bool commit();

private:
    SqliteDatabase &m_database;
    bool m_hasBegun = false;
};
