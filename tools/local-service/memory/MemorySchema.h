#pragma once

class SqliteDatabase;

/// The version of the tables that this program writes.
constexpr int memorySchemaVersion = 2;

enum class SchemaState {
    Ready,
    /// Written by a later version of this program, which alone knows what it holds.
    TooNew,
    Failed,
};

/// Makes the tables, or brings those of an earlier version up to date, as a whole or not at all.
SchemaState prepareMemorySchema(SqliteDatabase &database);
