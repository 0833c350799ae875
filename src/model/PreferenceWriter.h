#pragma once

#include "PreferenceBackend.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>

/// The thread that owns a preference store's back-end and does all of its reading and writing.
///
/// Values that could not be read are never overwritten: a commit first reads them, and fails as
/// long as that fails.
///
/// Every function may be called from any one other thread.
class PreferenceWriter
{
public:
    using DataSource = std::function<QByteArray()>;
    using Merge = std::function<QByteArray(const QByteArray &set, const QByteArray &stored)>;
    /// A value on its way to the disk; `std::monostate` removes the key.
    using PendingValue = std::variant<std::monostate, DataSource, QString, bool>;

    /// A damaged, replaced or vanished store whose place a new one takes.
    struct Repair
    {
        enum class Occasion { reading, committing };
        Occasion occasion;
        /// What was found and done, in one line.
        QString description;
    };

    /// Starts the thread. `news` is called on it when there is something to take with
    /// `takeFailure`, `takeRepairs` or `takeLateScalars`.
    PreferenceWriter(std::unique_ptr<PreferenceBackend> backend, std::function<void()> news);
    /// Tries once more to commit what is pending, and ends the thread.
    ~PreferenceWriter();

    PreferenceWriter(const PreferenceWriter &) = delete;
    PreferenceWriter &operator=(const PreferenceWriter &) = delete;

    /// The strings and booleans that were stored at the start; waits until they are read, or could
    /// not be.
    QHash<QString, PreferenceValue> storedScalars();

    /// The bytes under `key`: pending ones if there are, else what the back-end holds, which may
    /// wait for a commit to end.
    std::optional<QByteArray> data(const QString &key);

    /// Why stored values cannot be read; nothing when all were.
    std::optional<QString> readFailure();

    /// How bytes set under `key` are combined with stored ones that could only be read later.
    void setMerge(const QString &key, const Merge &merge);

    /// Replaces the pending value of `key`, if there is one. A removal also deletes what was kept
    /// of damaged stores, and a value that could not be read. A string or boolean is ignored while
    /// `takeLateScalars` has a stored one for the key, which the caller has not seen yet.
    void set(const QString &key, const PendingValue &value);

    /// Says how the bytes under `key`, which were read, can be made again should the store be lost;
    /// does nothing once a value was set.
    void remember(const QString &key, const DataSource &source);

    /// Waits until nothing is pending, which is true, or a commit has failed, which is false.
    bool flush();

    /// The stored strings and booleans, once, if they could not be read when `storedScalars` was
    /// called and have been read since; otherwise nothing.
    std::optional<QHash<QString, PreferenceValue>> takeLateScalars();

    /// Why commits began to fail, once; nothing when it was taken or they succeed.
    std::optional<QString> takeFailure();

    /// What was found wrong with the store and put right, each once.
    QList<Repair> takeRepairs();

private:
    using Clock = std::chrono::steady_clock;
    using PendingValues = QHash<QString, PendingValue>;

    /// A read that waits for the writer thread.
    struct Read
    {
        QString key;
        std::optional<QByteArray> value;
        bool isDone = false;
    };

    void run();
    std::optional<QString> loadScalars(std::unique_lock<std::mutex> &lock);
    void serveRead(std::unique_lock<std::mutex> &lock);
    void commit(std::unique_lock<std::mutex> &lock);
    std::optional<QString> readUnread(std::unique_lock<std::mutex> &lock);
    std::optional<QString> write(std::unique_lock<std::mutex> &lock, const PendingValues &values);
    void noteRepairs(std::unique_lock<std::mutex> &lock, Repair::Occasion occasion);

    std::unique_ptr<PreferenceBackend> m_backend;
    const std::function<void()> m_news;

    std::mutex m_mutex;
    std::condition_variable m_wakeWriter;
    std::condition_variable m_progress;
    // All below are guarded by m_mutex.
    std::optional<QHash<QString, PreferenceValue>> m_storedScalars;
    PendingValues m_pending;
    /// What the running commit took out of m_pending.
    PendingValues m_inFlight;
    /// Every value that this program knows to be stored or has set; a lost store is rewritten from
    /// them.
    PendingValues m_held;
    /// The store was lost while it was read.
    bool m_mustRewrite = false;
    QList<Repair> m_repairs;
    /// A removal is in m_pending or m_inFlight, or was when another value took its place.
    bool m_isRemoving = false;
    Read *m_read = nullptr;
    bool m_areScalarsRead = false;
    std::optional<QHash<QString, PreferenceValue>> m_lateScalars;
    /// Keys whose bytes could not be read.
    QSet<QString> m_unread;
    std::optional<QString> m_readFailure;
    /// Stored bytes that nobody but this writer has seen: every later value is merged with them.
    QHash<QString, QByteArray> m_unseen;
    QHash<QString, Merge> m_merges;
    Clock::time_point m_nextAttempt;
    std::chrono::seconds m_retryDelay;
    quint64 m_failures = 0;
    bool m_isFailing = false;
    bool m_isStopping = false;
    std::optional<QString> m_untakenFailure;

    std::unique_ptr<QThread> m_thread;
};
