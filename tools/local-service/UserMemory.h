#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <list>
#include <mutex>

/// The last subjects each user asked about, for as long as the service runs. Safe to use from many
/// threads. Bounded: the user who has been silent longest is forgotten first.
class UserMemory
{
public:
    static constexpr qsizetype mostSubjects = 5;
    static constexpr qsizetype mostUsers = 1000;

    /// What `userId` asked about, newest first, each once.
    QStringList subjects(const QString &userId) const;

    /// Puts `subject` first among those of `userId`. An empty one of either is not kept.
    void remember(const QString &userId, const QString &subject);

private:
    struct User
    {
        QStringList subjects;
        std::list<QString>::iterator place;
    };

    mutable std::mutex m_mutex;
    QHash<QString, User> m_users;
    // Newest first.
    std::list<QString> m_order;
};
