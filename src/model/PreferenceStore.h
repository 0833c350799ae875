#pragma once

#include "PreferenceValue.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class PreferenceBackend;
class PreferenceWriter;

/// The user's preference store: bytes, strings and booleans by key.
///
/// A change is seen by the next read at once and committed in the background: a writer thread
/// takes the newest value of every changed key and commits them in one transaction. A commit that
/// fails keeps its keys and is tried again with the next change, and after a while (1 s at first,
/// up to 30 s) also without one. Destruction waits until everything accepted is on disk or has
/// failed once more.
///
/// Stored values that cannot be read, for lack of permission or because another program has locked
/// them, count as absent but are never overwritten: commits fail until they are read. Then strings
/// and booleans take their stored values again, whatever was set meanwhile, and bytes are merged.
///
/// A file that another program replaces, removes or writes over, or that is damaged, is replaced by
/// a new one with every value that this program has set or read. Bytes that were read are among
/// them once `remember` has said how to make them again.
///
/// Every function belongs to the thread that made the store.
class PreferenceStore : public QObject
{
    Q_OBJECT

public:
    /// Makes the bytes of a value when they are needed: on the writer thread, or, for a read before
    /// the commit, on the reading one. It must hold values and no references.
    using DataSource = std::function<QByteArray()>;
    /// Combines bytes that were set with stored ones that could only be read later, on the writer
    /// thread.
    using Merge = std::function<QByteArray(const QByteArray &set, const QByteArray &stored)>;

    explicit PreferenceStore(std::unique_ptr<PreferenceBackend> backend, QObject *parent = nullptr);
    ~PreferenceStore() override;

    /// The value under `key`, absent too when the stored value is of another type.
    std::optional<QByteArray> data(const QString &key) const;
    std::optional<QString> string(const QString &key) const;
    std::optional<bool> boolean(const QString &key) const;

    /// Why stored values cannot be read, in one line; nothing when all were.
    std::optional<QString> readFailure() const;
    /// How bytes under `key` are merged; where nothing is said the stored ones stay.
    void setMerge(const QString &key, const Merge &merge);

    /// Says how the bytes under `key`, which were read, can be made again should the store be lost;
    /// does nothing once a value was set.
    void remember(const QString &key, const DataSource &source);

    void setData(const QString &key, DataSource source);
    void setString(const QString &key, const QString &value);
    void setBoolean(const QString &key, bool value);
    /// Deletes the value from what was kept of damaged stores too.
    void remove(const QString &key);

    /// Waits until all that was set is committed, or a commit has failed, which yields false.
    bool flush();

Q_SIGNALS:
    /// The value under `key` was set or removed in this process, or could be read at last.
    void changed(const QString &key);
    /// Commits began to fail; emitted once, and again only after one that succeeded.
    void commitFailed(const QString &description);
    /// The stored file was damaged, replaced or gone, which was found while it was read or before a
    /// commit; a new one takes its place. Emitted once for each.
    void repairedWhileReading(const QString &description);
    void repairedWhileCommitting(const QString &description);

private:
    template <typename Value>
    std::optional<Value> scalar(const QString &key) const;
    QHash<QString, PreferenceValue> &scalars() const;
    void reportNews();

    std::unique_ptr<PreferenceWriter> m_writer;
    /// All strings and booleans as they now are. Filled by the first access, which waits until the
    /// writer thread has read them. Bytes are not kept here: a history is large and read once.
    mutable std::optional<QHash<QString, PreferenceValue>> m_scalars;
};
