#pragma once

#include "SqliteDatabase.h"
#include "UserContext.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

/// What the service remembers of its users: the conversation under way, until half an hour of
/// silence; and for 180 days after the last question, what they studied and what practice
/// questions that went wrong were about. Users are told apart by the hash of their id, so that the
/// file tells nobody an id to ask with. What was written when a call returns survives
/// the end of the process, however it ends; several processes may use one file. Safe to use from
/// many threads.
class UserMemory
{
public:
    static constexpr qsizetype mostSubjects = 5;
    static constexpr qsizetype mostToReview = 5;
    /// Beyond it the user who has been silent longest is forgotten.
    static constexpr qint64 mostUsers = 20'000;
    /// In characters, of all the turns of a context together: what a small model reads besides the
    /// question.
    static constexpr qsizetype longestContext = 6000;
    /// In seconds.
    static constexpr qint64 conversationLimit = qint64{30} * 60;
    static constexpr qint64 userLimit = qint64{180} * 24 * 60 * 60;

    /// Seconds since 1970, UTC.
    using Clock = std::function<qint64()>;
    /// Told once why nothing can be remembered.
    using Report = std::function<void(const QString &problem)>;

    /// What one exchange leaves.
    struct Exchange
    {
        ChatTurn turn;
        /// Empty when the question was about nothing in particular.
        QString subject;
        QStringList toReview;
    };

    /// Opens `file` when it is first needed; remembers in memory when it is empty.
    explicit UserMemory(QString file = {}, Report report = {}, Clock clock = {});

    /// What is remembered of `userId`; nothing for an empty id.
    UserContext context(const QString &userId);

    /// Adds `exchange` to what is remembered of `userId`, unless that is empty.
    void remember(const QString &userId, const Exchange &exchange);

    /// Erases all that is remembered of `userId`. False when that could not be done.
    bool forget(const QString &userId);

    /// Erases what has been kept for as long as it may be.
    void forgetOld();

private:
    bool open();
    bool write(const QByteArray &user, const Exchange &exchange);
    bool eraseOld();
    bool emptyJournal();
    QStringList texts(const char *query, const QByteArray &user);
    QList<ChatTurn> turns(const QByteArray &user);

    QString m_file;
    Report m_report;
    Clock m_clock;

    std::mutex m_mutex;
    SqliteDatabase m_database;
    bool m_isOpen = false;
    bool m_hasReported = false;
};
