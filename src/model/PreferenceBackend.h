#pragma once

#include "PreferenceValue.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

/// Why a back-end could not read what may well be there, in one line.
struct PreferenceReadError
{
    QString description;
};

/// Where a preference store keeps its values. Every call but construction comes from one thread,
/// not the one that made the object; it is destroyed there too.
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

    /// Makes all of `changes`, durably, or none of them; no value removes the key. Returns why it
    /// could not, in one line, or nothing when all is well. A back-end that has lost what was
    /// stored asks for the `others`, all values that the program holds besides, and stores them
    /// too.
    virtual std::optional<QString> commit(const Values &changes,
                                          const std::function<Values()> &others)
        = 0;

    /// Deletes what was kept of damaged stores, in which removed values may still be found. Returns
    /// what `commit` returns.
    virtual std::optional<QString> deleteDamaged() { return std::nullopt; }

    /// What was found wrong with the store in the last calls and put right since, or will be by the
    /// next commit: a line for each, once.
    virtual QStringList takeRepairs() { return {}; }
};
