#pragma once

#include "PreferenceValue.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// Where a preference store keeps its values. Every call but construction comes from one thread,
/// not the one that made the object; it is destroyed there too.
class PreferenceBackend
{
public:
    PreferenceBackend() = default;
    PreferenceBackend(const PreferenceBackend &) = delete;
    PreferenceBackend &operator=(const PreferenceBackend &) = delete;
    virtual ~PreferenceBackend() = default;

    /// All strings and booleans. Called first, and once; what cannot be read is absent.
    virtual QHash<QString, PreferenceValue> load() = 0;

    /// The bytes under `key`; absent too when they cannot be read or the value is of another type.
    virtual std::optional<QByteArray> data(const QString &key) = 0;

    /// Makes all of `changes`, durably, or none of them; no value removes the key. Returns why it
    /// could not, in one line, or nothing when all is well.
    virtual std::optional<QString> commit(const QHash<QString, PreferenceValue> &changes) = 0;
};
