#pragma once

#include "PreferenceValue.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

/// Why stored values, if there are any, could not be read, in one line.
struct PreferenceReadError
{
    QString description;
};

/// Where a preference store keeps its values. Constructed on one thread, then used and destroyed on
/// another.
class PreferenceBackend
{
public:
    PreferenceBackend() = default;
    PreferenceBackend(const PreferenceBackend &) = delete;
    PreferenceBackend &operator=(const PreferenceBackend &) = delete;
    virtual ~PreferenceBackend() = default;

    using Values = QHash<QString, PreferenceValue>;

    /// All strings and booleans. Called first, and again only while it fails.
    virtual std::variant<Values, PreferenceReadError> load() = 0;

    /// The bytes under `key`; none when there is no value or one of another type.
    virtual std::variant<std::optional<QByteArray>, PreferenceReadError> data(const QString &key)
        = 0;

    /// Commits all of `changes` durably, or none of them; an empty value removes its key. Returns
    /// why it failed, in one line, or nothing when it did not. A back-end whose stored values are
    /// lost calls `others` for the other values that the program holds, and stores them too.
    virtual std::optional<QString> commit(const Values &changes,
                                          const std::function<Values()> &others)
        = 0;

    /// Deletes what was kept of damaged stores, in which removed values may still be found. Returns
    /// what `commit` returns.
    virtual std::optional<QString> deleteDamaged() { return std::nullopt; }

    /// The damage that was found since the last call and that is repaired, or will be by the next
    /// commit: one line for each.
    virtual QStringList takeRepairs() { return {}; }
};
