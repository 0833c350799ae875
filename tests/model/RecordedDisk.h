#pragma once

#include "DiskCalls.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QRandomGenerator>
#include <QString>

#include <memory>
#include <mutex>

/// Everything that this process changes in the files of one folder, and what the disk may hold of
/// it when the power fails at any moment.
///
/// A disk keeps what was there when a file was last synced. Of what was done to the file since, it
/// keeps any part, in any order, each write whole, cut short or not at all. A file is there, or is
/// no longer there, for certain only once its folder was synced.
class RecordedDisk
{
public:
    /// Records until `stop`. No part of the path is a symbolic link.
    explicit RecordedDisk(const QString &folder);

    /// Something that has to be true of the disk from now on. Returns how much happened before.
    qsizetype now() const;
    void stop();

    /// Writes into the existing folder `target` what may be left after a power cut when only the
    /// first `length` things had happened.
    void rebuild(qsizetype length, QRandomGenerator &random, const QString &target) const;

private:
    struct Event
    {
        DiskCall::Kind kind;
        QByteArray name; ///< within the folder; empty for the folder itself
        qint64 offset;
        QByteArray bytes;
    };

    /// One file as far as it is known to be on disk, and what happened to it since.
    struct File
    {
        QByteArray synced;
        QList<Event> unsynced;
        bool isThere = false;
        bool isCertain = false;
    };

    QHash<QByteArray, File> filesAfter(qsizetype length) const;
    static QByteArray remains(const File &file, QRandomGenerator &random);

    const QByteArray m_folder;
    mutable std::mutex m_mutex;
    QList<Event> m_events;
    std::unique_ptr<DiskCalls> m_calls;
};
