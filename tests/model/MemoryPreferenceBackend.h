// Tests of the model: the JSON form by tables, another parser and mutations; the store with each of
// its back-ends, with faults, and when it is killed.
#pragma once

#include "PreferenceBackend.h"

#include <QList>

#include <chrono>
#include <memory>
#include <mutex>
#include <utility>

/// The values of a MemoryPreferenceBackend, which a test can read and change while the store runs.
class PreferenceMemory
{
public:
    /// Every commit fails while this is set.
    void setFailure(const std::optional<QString> &failure)
    {
        const std::scoped_lock lock(m_mutex);
        m_failure = failure;
    }

    /// Every read fails while this is set.
    void setReadFailure(const std::optional<QString> &failure)
    {
        const std::scoped_lock lock(m_mutex);
        m_readFailure = failure;
    }

    std::optional<QString> readFailure()
    {
        const std::scoped_lock lock(m_mutex);
        return m_readFailure;
    }

    PreferenceValue value(const QString &key)
    {
        const std::scoped_lock lock(m_mutex);
        return m_values.value(key);
    }

    void setValue(const QString &key, const PreferenceValue &value)
    {
        const std::scoped_lock lock(m_mutex);
        m_values.insert(key, value);
    }

    /// When each commit was tried, the failed ones too.
    QList<std::chrono::steady_clock::time_point> attempts()
    {
        const std::scoped_lock lock(m_mutex);
        return m_attempts;
    }

    QHash<QString, PreferenceValue> values()
    {
        const std::scoped_lock lock(m_mutex);
        return m_values;
    }

    /// Loses everything, as when the file is found damaged in the next call that is made.
    void lose()
    {
        const std::scoped_lock lock(m_mutex);
        m_values.clear();
        m_isLost = true;
        m_repairs.append(QStringLiteral("lost"));
    }

    QStringList takeRepairs()
    {
        const std::scoped_lock lock(m_mutex);
        return std::exchange(m_repairs, {});
    }

    std::optional<QString> commit(const PreferenceBackend::Values &changes,
                                  const std::function<PreferenceBackend::Values()> &others)
    {
        const std::scoped_lock lock(m_mutex);
        m_attempts.append(std::chrono::steady_clock::now());
        if (m_failure)
            return m_failure;
        if (std::exchange(m_isLost, false))
            m_values = others();
        for (auto it = changes.cbegin(); it != changes.cend(); ++it) {
            if (std::holds_alternative<std::monostate>(*it))
                m_values.remove(it.key());
            else
                m_values.insert(it.key(), *it);
        }
        return std::nullopt;
    }

private:
    std::mutex m_mutex;
    QHash<QString, PreferenceValue> m_values;
    QList<std::chrono::steady_clock::time_point> m_attempts;
    std::optional<QString> m_failure;
    std::optional<QString> m_readFailure;
    QStringList m_repairs;
    bool m_isLost = false;
};

/// Preferences that last as long as the test's PreferenceMemory.
class MemoryPreferenceBackend : public PreferenceBackend
{
public:
    explicit MemoryPreferenceBackend(std::shared_ptr<PreferenceMemory> memory)
        : m_memory(std::move(memory))
    { }

    std::variant<Values, PreferenceReadError> load() override
    {
        if (const auto failure = m_memory->readFailure())
            return PreferenceReadError{*failure};
        Values scalars = m_memory->values();
        scalars.removeIf(
            [](const auto &entry) { return std::holds_alternative<QByteArray>(entry.value()); });
        return scalars;
    }

    std::variant<std::optional<QByteArray>, PreferenceReadError> data(const QString &key) override
    {
        if (const auto failure = m_memory->readFailure())
            return PreferenceReadError{*failure};
        const PreferenceValue value = m_memory->value(key);
        const auto *bytes = std::get_if<QByteArray>(&value);
        return bytes ? std::optional(*bytes) : std::nullopt;
    }

    std::optional<QString> commit(const Values &changes,
                                  const std::function<Values()> &others) override
    {
        return m_memory->commit(changes, others);
    }

    QStringList takeRepairs() override { return m_memory->takeRepairs(); }

private:
    std::shared_ptr<PreferenceMemory> m_memory;
};
