#pragma once

#include <QHash>
#include <QString>

#include <chrono>
#include <deque>
#include <mutex>

/// Bounds what a model is asked, and so what it costs: in any minute, so many questions by all and
/// so many by one user. Safe to use from many threads.
class QuestionLimit
{
public:
    using Time = std::chrono::steady_clock::time_point;
    /// More in a minute than a person reads answers.
    static constexpr int mostByOneUser = 10;

    /// `mostByAll` questions in any minute; one user gets at most `mostByOneUser` of them.
    explicit QuestionLimit(int mostByAll);

    /// Counts a question asked at `now`, which never goes back; false, and not counted, when it is
    /// one too many.
    bool take(const QString &userId, Time now);

private:
    struct Question
    {
        Time time;
        QString userId;
    };

    std::mutex m_mutex;
    int m_mostByAll;
    // Those of the last minute, oldest first, and how many of them each user asked.
    std::deque<Question> m_questions;
    QHash<QString, int> m_byUser;
};
