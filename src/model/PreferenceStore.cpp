#include "PreferenceStore.h"

#include "PreferenceBackend.h"
#include "PreferenceWriter.h"

#include <utility>

PreferenceStore::PreferenceStore(std::unique_ptr<PreferenceBackend> backend, QObject *parent)
    : QObject(parent)
    , m_writer(std::make_unique<PreferenceWriter>(std::move(backend), [this] {
        QMetaObject::invokeMethod(this, &PreferenceStore::reportNews, Qt::QueuedConnection);
    }))
{ }

PreferenceStore::~PreferenceStore()
{
    // End the writer thread first: it calls this object.
    m_writer.reset();
}

std::optional<QByteArray> PreferenceStore::data(const QString &key) const
{
    return m_writer->data(key);
}

std::optional<QString> PreferenceStore::string(const QString &key) const
{
    return scalar<QString>(key);
}

std::optional<bool> PreferenceStore::boolean(const QString &key) const
{
    return scalar<bool>(key);
}

template <typename Value>
std::optional<Value> PreferenceStore::scalar(const QString &key) const
{
    const PreferenceValue stored = scalars().value(key);
    const auto *value = std::get_if<Value>(&stored);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<QString> PreferenceStore::readFailure() const
{
    return m_writer->readFailure();
}

void PreferenceStore::setMerge(const QString &key, const Merge &merge)
{
    m_writer->setMerge(key, merge);
}

void PreferenceStore::remember(const QString &key, const DataSource &source)
{
    m_writer->remember(key, source);
}

void PreferenceStore::setData(const QString &key, DataSource source)
{
    scalars().remove(key);
    m_writer->set(key, std::move(source));
    Q_EMIT changed(key);
}

void PreferenceStore::setString(const QString &key, const QString &value)
{
    scalars().insert(key, value);
    m_writer->set(key, value);
    Q_EMIT changed(key);
}

void PreferenceStore::setBoolean(const QString &key, bool value)
{
    scalars().insert(key, value);
    m_writer->set(key, value);
    Q_EMIT changed(key);
}

void PreferenceStore::remove(const QString &key)
{
    scalars().remove(key);
    m_writer->set(key, std::monostate());
    Q_EMIT changed(key);
}

bool PreferenceStore::flush()
{
    const bool isCommitted = m_writer->flush();
    reportNews();
    return isCommitted;
}

void PreferenceStore::reportNews()
{
    if (const auto late = m_writer->takeLateScalars()) {
        scalars().insert(*late);
        for (auto it = late->cbegin(); it != late->cend(); ++it)
            Q_EMIT changed(it.key());
    }
    const auto repairs = m_writer->takeRepairs();
    for (const auto &repair : repairs) {
        if (repair.occasion == PreferenceWriter::Repair::Occasion::reading)
            Q_EMIT repairedWhileReading(repair.description);
        else
            Q_EMIT repairedWhileCommitting(repair.description);
    }
    if (const auto failure = m_writer->takeFailure())
        Q_EMIT commitFailed(*failure);
}

QHash<QString, PreferenceValue> &PreferenceStore::scalars() const
{
    if (!m_scalars)
        m_scalars = m_writer->storedScalars();
    return *m_scalars;
}
