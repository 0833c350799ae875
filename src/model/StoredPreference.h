#pragma once

#include "PreferenceStore.h"

#include <QObject>
#include <QString>

#include <type_traits>
#include <utility>

/// A string or a boolean of the preference store, under one key. While the store holds no value of
/// this type, a read yields the default, which is never written.
template <typename Value>
class StoredPreference
{
    static_assert(std::is_same_v<Value, QString> || std::is_same_v<Value, bool>);

public:
    /// A member of `owner`, which is told by `changed`, and only when the value that reads yield is
    /// another one than before, whoever set it. `store` is borrowed and outlives this object.
    template <typename Owner>
    StoredPreference(PreferenceStore *store, QString key, Value defaultValue, Owner *owner,
                     void (Owner::*changed)())
        : m_store(store)
        , m_key(std::move(key))
        , m_default(std::move(defaultValue))
        , m_lastValue(value())
    {
        QObject::connect(store, &PreferenceStore::changed, owner,
                         [this, owner, changed](const QString &changedKey) {
                             if (changedKey != m_key)
                                 return;
                             const Value previous = std::exchange(m_lastValue, value());
                             if (previous != m_lastValue)
                                 (owner->*changed)();
                         });
    }
    ~StoredPreference() = default;
    StoredPreference(const StoredPreference &) = delete;
    StoredPreference &operator=(const StoredPreference &) = delete;

    Value value() const
    {
        if constexpr (std::is_same_v<Value, bool>)
            return m_store->boolean(m_key).value_or(m_default);
        else
            return m_store->string(m_key).value_or(m_default);
    }

    void set(const Value &value)
    {
        if constexpr (std::is_same_v<Value, bool>)
            m_store->setBoolean(m_key, value);
        else
            m_store->setString(m_key, value);
    }

private:
    PreferenceStore *m_store;
    QString m_key;
    Value m_default;
    /// What a read yielded last, to tell a change from a value set again.
    Value m_lastValue;
};
