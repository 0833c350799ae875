#include "MemorySchema.h"

#include "SqliteDatabase.h"

#include <array>
#include <vector>

// What each version adds to the one before. Never change a step that was released.
static const std::array<std::vector<const char *>, memorySchemaVersion> &steps()
{
    static const std::array<std::vector<const char *>, memorySchemaVersion> statements{{
        // 1: users by the hash of their id, what they studied, and the conversation under way.
        // Times are seconds since 1970,
        // UTC; what has the higher number came later.
        {"create table users(user blob primary key, used integer not null) without rowid",
         "create index users_by_use on users(used)",
         "create table subjects(number integer primary key,"
         "user blob not null references users on delete cascade, subject text not null,"
         "unique(user, subject))",
         "create table turns(number integer primary key,"
         "user blob not null references users on delete cascade,"
         "question text not null, answer text not null)",
         "create index turns_by_user on turns(user, number)"},
        // 2: what practice questions that went wrong were about.
        {"create table reviews(number integer primary key,"
         "user blob not null references users on delete cascade, topic text not null,"
         "unique(user, topic))"},
    }};
    return statements;
}

static bool upgrade(SqliteDatabase &database, qint64 version)
{
    for (auto step = static_cast<size_t>(version); step < steps().size(); ++step) {
        for (const char *statement : steps()[step]) {
            if (!database.run(statement))
                return false;
        }
    }
    static_assert(memorySchemaVersion == 2);
    return database.run("pragma user_version = 2").has_value();
}

SchemaState prepareMemorySchema(SqliteDatabase &database)
{
    // What was erased is overwritten as well. A commit is in the hands of the system when it
    // returns, which no end of this process undoes; to wait for the disk each time would hold up
    // two hundred answers that end together by seconds.
    for (const char *setting : {"pragma secure_delete = on", "pragma foreign_keys = on",
                                "pragma journal_mode = wal", "pragma synchronous = normal"}) {
        if (!database.run(setting))
            return SchemaState::Failed;
    }
    SqliteTransaction transaction(database);
    const auto rows = transaction.hasBegun() ? database.run("pragma user_version") : std::nullopt;
    if (!rows)
        return SchemaState::Failed;
    const qint64 version = rows->first().first().toLongLong();
    if (version > memorySchemaVersion)
        return SchemaState::TooNew;
    const bool isReady = version == memorySchemaVersion || upgrade(database, version);
    return isReady && transaction.commit() ? SchemaState::Ready : SchemaState::Failed;
}
