#include "PreferenceWriter.h"

#include <algorithm>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// It takes a person to free a full disk or to bring a folder back, so retrying often is no use.
constexpr std::chrono::seconds firstRetryDelay = 1s;
constexpr std::chrono::seconds longestRetryDelay = 30s;

PreferenceValue evaluated(const PreferenceWriter::PendingValue &pending)
{
    return std::visit(
        [](const auto &value) -> PreferenceValue {
            if constexpr (std::is_same_v<decltype(value), const PreferenceWriter::DataSource &>)
                return value();
            else
                return value;
        },
        pending);
}

/// The value to be stored: what was set, with what was stored before and could only be read later.
PreferenceValue merged(const PreferenceWriter::PendingValue &set, const QByteArray &stored,
                       const PreferenceWriter::Merge &merge)
{
    const PreferenceValue value = evaluated(set);
    const auto *bytes = std::get_if<QByteArray>(&value);
    if (!bytes)
        return value;
    return merge ? merge(*bytes, stored) : stored;
}

} // namespace

PreferenceWriter::PreferenceWriter(std::unique_ptr<PreferenceBackend> backend,
                                   std::function<void()> news)
    : m_backend(std::move(backend))
    , m_news(std::move(news))
    , m_retryDelay(firstRetryDelay)
    , m_thread(QThread::create([this] { run(); }))
{
    m_thread->setObjectName(u"preferences"_s);
    m_thread->start();
}

PreferenceWriter::~PreferenceWriter()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isStopping = true;
    }
    m_wakeWriter.notify_one();
    m_thread->wait();
}

QHash<QString, PreferenceValue> PreferenceWriter::storedScalars()
{
    std::unique_lock lock(m_mutex);
    m_progress.wait(lock, [this] { return m_storedScalars.has_value(); });
    return *m_storedScalars;
}

std::optional<QByteArray> PreferenceWriter::data(const QString &key)
{
    std::unique_lock lock(m_mutex);
    for (const PendingValues *values : {&m_pending, &m_inFlight}) {
        const auto found = values->constFind(key);
        if (found == values->constEnd())
            continue;
        const auto *source = std::get_if<DataSource>(&*found);
        if (!source)
            return std::nullopt;
        const DataSource evaluate = *source;
        lock.unlock();
        return evaluate();
    }

    Read read{key, std::nullopt};
    m_read = &read;
    m_wakeWriter.notify_one();
    m_progress.wait(lock, [&read] { return read.isDone; });
    return std::move(read.value);
}

std::optional<QString> PreferenceWriter::readFailure()
{
    const std::scoped_lock lock(m_mutex);
    return m_readFailure;
}

void PreferenceWriter::setMerge(const QString &key, const Merge &merge)
{
    const std::scoped_lock lock(m_mutex);
    m_merges.insert(key, merge);
}

void PreferenceWriter::set(const QString &key, const PendingValue &value)
{
    {
        const std::scoped_lock lock(m_mutex);
        const bool isScalar
            = std::holds_alternative<QString>(value) || std::holds_alternative<bool>(value);
        if (isScalar && m_lateScalars && m_lateScalars->contains(key))
            return;
        if (std::holds_alternative<std::monostate>(value)) {
            m_isRemoving = true;
            m_unread.remove(key);
            m_unseen.remove(key);
        }
        m_pending.insert(key, value);
        m_nextAttempt = Clock::now();
    }
    m_wakeWriter.notify_one();
}

void PreferenceWriter::remember(const QString &key, const DataSource &source)
{
    const std::scoped_lock lock(m_mutex);
    if (!m_pending.contains(key) && !m_held.contains(key))
        m_held.insert(key, source);
}

bool PreferenceWriter::flush()
{
    std::unique_lock lock(m_mutex);
    const quint64 failuresBefore = m_failures;
    m_nextAttempt = Clock::now();
    m_wakeWriter.notify_one();
    m_progress.wait(lock, [&] {
        return m_failures != failuresBefore
            || (m_pending.isEmpty() && m_inFlight.isEmpty() && !m_mustRewrite);
    });
    return m_failures == failuresBefore;
}

std::optional<QHash<QString, PreferenceValue>> PreferenceWriter::takeLateScalars()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_lateScalars, std::nullopt);
}

std::optional<QString> PreferenceWriter::takeFailure()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_untakenFailure, std::nullopt);
}

QList<PreferenceWriter::Repair> PreferenceWriter::takeRepairs()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_repairs, {});
}

void PreferenceWriter::run()
{
    std::unique_lock lock(m_mutex);
    loadScalars(lock);

    while (!m_isStopping) {
        if (m_read)
            serveRead(lock);
        else if (m_pending.isEmpty() && !m_mustRewrite)
            m_wakeWriter.wait(lock);
        else if (Clock::now() < m_nextAttempt)
            m_wakeWriter.wait_until(lock, m_nextAttempt);
        else
            commit(lock);
    }
    if (!m_pending.isEmpty() || m_mustRewrite)
        commit(lock);
    m_backend.reset();
}

std::optional<QString> PreferenceWriter::loadScalars(std::unique_lock<std::mutex> &lock)
{
    lock.unlock();
    auto loaded = m_backend->load();
    lock.lock();
    noteRepairs(lock, Repair::Occasion::reading);
    auto *stored = std::get_if<PreferenceBackend::Values>(&loaded);
    if (stored) {
        m_areScalarsRead = true;
        for (auto it = stored->cbegin(); it != stored->cend(); ++it) {
            if (const auto *text = std::get_if<QString>(&*it))
                m_held.insert(it.key(), *text);
            else
                m_held.insert(it.key(), std::get<bool>(*it));
        }
        // An identifier made because none could be read must not take the place of the real one.
        m_pending.removeIf([&](const auto &entry) { return stored->contains(entry.key()); });
        if (m_storedScalars)
            m_lateScalars = *stored;
        m_storedScalars = std::move(*stored);
    } else {
        m_readFailure = std::get<PreferenceReadError>(loaded).description;
        m_storedScalars.emplace();
    }
    m_progress.notify_all();
    if (m_lateScalars) {
        lock.unlock();
        m_news();
        lock.lock();
    }
    return m_areScalarsRead ? std::nullopt : m_readFailure;
}

void PreferenceWriter::serveRead(std::unique_lock<std::mutex> &lock)
{
    Read *read = std::exchange(m_read, nullptr);
    lock.unlock();
    auto result = m_backend->data(read->key);
    lock.lock();
    noteRepairs(lock, Repair::Occasion::reading);
    if (auto *value = std::get_if<std::optional<QByteArray>>(&result)) {
        read->value = std::move(*value);
        m_unread.remove(read->key);
        if (!m_areScalarsRead)
            loadScalars(lock);
        if (m_areScalarsRead && m_unread.isEmpty())
            m_readFailure.reset();
    } else {
        m_readFailure = std::get<PreferenceReadError>(result).description;
        m_unread.insert(read->key);
    }
    read->isDone = true;
    m_progress.notify_all();
}

void PreferenceWriter::commit(std::unique_lock<std::mutex> &lock)
{
    auto failure = readUnread(lock);
    PendingValues values;
    PendingValues formerlyHeld;
    if (!failure) {
        values = m_inFlight = std::exchange(m_pending, {});
        formerlyHeld = m_held;
        m_held.insert(values);
        failure = write(lock, values);
    }

    if (!failure) {
        m_isFailing = false;
        m_mustRewrite = false;
        m_retryDelay = firstRetryDelay;
    } else {
        // What was set meanwhile is newer.
        m_inFlight.insert(std::exchange(m_pending, {}));
        m_pending = std::exchange(m_inFlight, {});
        ++m_failures;
        m_nextAttempt = Clock::now() + m_retryDelay;
        m_retryDelay = std::min(2 * m_retryDelay, longestRetryDelay);
    }
    m_inFlight.clear();
    const bool isNews = failure && !std::exchange(m_isFailing, true);
    if (isNews)
        m_untakenFailure = std::move(failure);
    m_progress.notify_all();

    lock.unlock();
    if (isNews)
        m_news();
    // Free the history outside the lock, since these may be the last references to it.
    values.clear();
    formerlyHeld.clear();
    lock.lock();
}

/// Reads the values that could not be read before, so that no commit overwrites them unread.
std::optional<QString> PreferenceWriter::readUnread(std::unique_lock<std::mutex> &lock)
{
    if (!m_areScalarsRead) {
        if (auto failure = loadScalars(lock))
            return failure;
    }
    while (!m_unread.isEmpty()) {
        const QString key = *m_unread.cbegin();
        lock.unlock();
        auto result = m_backend->data(key);
        lock.lock();
        noteRepairs(lock, Repair::Occasion::reading);
        if (const auto *error = std::get_if<PreferenceReadError>(&result))
            return error->description;
        // It may have been removed meanwhile.
        const bool isUnread = m_unread.remove(key);
        const auto &stored = std::get<std::optional<QByteArray>>(result);
        if (isUnread && stored)
            m_unseen.insert(key, *stored);
    }
    m_readFailure.reset();
    return std::nullopt;
}

std::optional<QString> PreferenceWriter::write(std::unique_lock<std::mutex> &lock,
                                               const PendingValues &values)
{
    const bool isRemoving = std::exchange(m_isRemoving, false);
    const auto unseen = m_unseen;
    const auto merges = m_merges;
    const auto held = m_held;
    lock.unlock();

    const auto stored = [&](const QString &key, const PendingValue &value) {
        return unseen.contains(key) ? merged(value, unseen[key], merges.value(key))
                                    : evaluated(value);
    };
    PreferenceBackend::Values changes;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        changes.insert(it.key(), stored(it.key(), *it));
    auto failure = m_backend->commit(changes, [&] {
        PreferenceBackend::Values others;
        for (auto it = unseen.cbegin(); it != unseen.cend(); ++it)
            others.insert(it.key(), *it);
        for (auto it = held.cbegin(); it != held.cend(); ++it) {
            if (!changes.contains(it.key()))
                others.insert(it.key(), stored(it.key(), *it));
        }
        return others;
    });
    if (!failure && isRemoving)
        failure = m_backend->deleteDamaged();

    lock.lock();
    noteRepairs(lock, Repair::Occasion::committing);
    if (failure)
        m_isRemoving = m_isRemoving || isRemoving;
    return failure;
}

/// Keeps what the back-end has to say of the last call.
void PreferenceWriter::noteRepairs(std::unique_lock<std::mutex> &lock, Repair::Occasion occasion)
{
    const QStringList descriptions = m_backend->takeRepairs();
    if (descriptions.isEmpty())
        return;
    for (const QString &description : descriptions)
        m_repairs.append({occasion, description});
    m_mustRewrite = m_mustRewrite || occasion == Repair::Occasion::reading;
    lock.unlock();
    m_news();
    lock.lock();
}
