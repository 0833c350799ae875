#include "UserMemory.h"

#include "MemorySchema.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <algorithm>

using namespace Qt::StringLiterals;

// In characters, of what is kept of one turn: enough to know what was said.
static constexpr qsizetype longestQuestion = 2000;
static constexpr qsizetype longestAnswer = 4000;
static constexpr qsizetype longestTopic = 120;
static constexpr int mostTurns = 12;

static QByteArray userKey(const QString &userId)
{
    return QCryptographicHash::hash(userId.toUtf8(), QCryptographicHash::Sha256);
}

UserMemory::UserMemory(QString file, Report report, Clock clock)
    : m_file(std::move(file))
    , m_report(std::move(report))
    , m_clock(std::move(clock))
{
    if (!m_clock)
        m_clock = [] { return QDateTime::currentSecsSinceEpoch(); };
}

bool UserMemory::open()
{
    if (m_isOpen)
        return true;
    QString problem;
    if (!m_database.open(m_file)) {
        problem = m_database.problem();
    } else {
        const SchemaState state = prepareMemorySchema(m_database);
        m_isOpen = state == SchemaState::Ready;
        problem = state == SchemaState::TooNew ? u"la escribió una versión más nueva"_s
                                               : m_database.problem();
    }
    if (!m_isOpen && !m_hasReported && m_report)
        m_report(problem);
    m_hasReported = !m_isOpen;
    return m_isOpen;
}

QStringList UserMemory::texts(const char *query, const QByteArray &user)
{
    QStringList result;
    const auto rows = m_database.run(query, {user});
    for (const auto &row : rows.value_or(SqliteDatabase::Rows()))
        result += row.first().toString();
    return result;
}

QList<ChatTurn> UserMemory::turns(const QByteArray &user)
{
    const auto rows = m_database.run("select question, answer from turns join users using(user) "
                                     "where user = ? and used > ? order by number desc",
                                     {user, m_clock() - conversationLimit});
    QList<ChatTurn> result;
    qsizetype length = 0;
    for (const auto &row : rows.value_or(SqliteDatabase::Rows())) {
        const ChatTurn turn{row[0].toString(), row[1].toString()};
        length += turn.question.size() + turn.answer.size();
        if (length > longestContext)
            break;
        result.prepend(turn);
    }
    return result;
}

UserContext UserMemory::context(const QString &userId)
{
    const std::scoped_lock lock(m_mutex);
    if (userId.isEmpty() || !open())
        return {};
    static_assert(mostSubjects == 5 && mostToReview == 5);
    const QByteArray user = userKey(userId);
    const auto known = m_database.run("select 1 from users where user = ? and used > ?",
                                      {user, m_clock() - userLimit});
    if (!known || known->isEmpty())
        return {};
    UserContext context;
    context.subjects
        = texts("select subject from subjects where user = ? order by number desc limit 5", user);
    context.toReview
        = texts("select topic from reviews where user = ? order by number desc limit 5", user);
    context.turns = turns(user);
    return context;
}

void UserMemory::remember(const QString &userId, const Exchange &exchange)
{
    const std::scoped_lock lock(m_mutex);
    if (userId.isEmpty() || !open())
        return;
    SqliteTransaction transaction(m_database);
    const bool isWritten = transaction.hasBegun() && eraseOld() && write(userKey(userId), exchange)
        && transaction.commit();
    if (!isWritten && !m_hasReported && m_report)
        m_report(m_database.problem());
    m_hasReported = !isWritten;
}

bool UserMemory::eraseOld()
{
    const qint64 now = m_clock();
    return m_database.run(
               "delete from turns where user in (select user from users where used <= ?)",
               {now - conversationLimit})
        && m_database.run("delete from users where used <= ?", {now - userLimit});
}

bool UserMemory::write(const QByteArray &user, const Exchange &exchange)
{
    static_assert(mostTurns == 12 && mostUsers == 20'000);
    bool works = m_database
                     .run("insert into users values(?, ?) "
                          "on conflict(user) do update set used = max(used, excluded.used)",
                          {user, m_clock()})
                     .has_value()
        && m_database.run("delete from users where user in "
                          "(select user from users order by used desc limit -1 offset 20000)")
        && m_database.run("insert into turns(user, question, answer) values(?, ?, ?)",
                          {user, exchange.turn.question.left(longestQuestion),
                           exchange.turn.answer.left(longestAnswer)})
        && m_database.run("delete from turns where user = ? and number not in (select number from "
                          "turns where user = ? order by number desc limit 12)",
                          {user, user});
    // What was there before is the newest again.
    if (!exchange.subject.isEmpty()) {
        const QString subject = exchange.subject.left(longestTopic);
        works = works
            && m_database.run("delete from subjects where user = ? and subject = ?",
                              {user, subject})
            && m_database.run("insert into subjects(user, subject) values(?, ?)", {user, subject})
            && m_database.run("delete from subjects where user = ? and number not in (select "
                              "number from subjects where user = ? order by number desc limit 5)",
                              {user, user});
    }
    for (const QString &whole : exchange.toReview) {
        const QString topic = whole.left(longestTopic);
        if (topic.isEmpty())
            continue;
        works = works
            && m_database.run("delete from reviews where user = ? and topic = ?", {user, topic})
            && m_database.run("insert into reviews(user, topic) values(?, ?)", {user, topic})
            && m_database.run("delete from reviews where user = ? and number not in (select "
                              "number from reviews where user = ? order by number desc limit 5)",
                              {user, user});
    }
    return works;
}

bool UserMemory::forget(const QString &userId)
{
    const std::scoped_lock lock(m_mutex);
    if (userId.isEmpty())
        return true;
    if (!open() || !m_database.run("delete from users where user = ?", {userKey(userId)}))
        return false;
    return emptyJournal();
}

// Until then it holds what was erased. Another process that reads can keep it from being emptied.
bool UserMemory::emptyJournal()
{
    const auto rows = m_database.run("pragma wal_checkpoint(truncate)");
    return rows && !rows->isEmpty() && rows->constFirst().constFirst().toLongLong() == 0;
}

void UserMemory::forgetOld()
{
    const std::scoped_lock lock(m_mutex);
    if (open() && eraseOld())
        emptyJournal();
}
