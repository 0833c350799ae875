#include "RecordedDisk.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

using Kind = DiskCall::Kind;

namespace {

/// What a disk writes at once.
constexpr qint64 sectorSize = 512;

void apply(QByteArray &contents, Kind kind, qint64 offset, QByteArrayView bytes)
{
    const qint64 end = kind == Kind::truncate ? offset : offset + bytes.size();
    if (kind == Kind::truncate || contents.size() < end)
        contents.resize(end, '\0');
    std::ranges::copy(bytes, contents.begin() + offset);
}

} // namespace

RecordedDisk::RecordedDisk(const QString &folder)
    : m_folder(QFile::encodeName(folder))
{
    m_calls = std::make_unique<DiskCalls>(m_folder, [this](const DiskCall &call) {
        if (call.kind == Kind::open || call.kind == Kind::read)
            return DiskAnswer();
        const bool isOfFolder = call.path.size() <= m_folder.size();
        const std::scoped_lock lock(m_mutex);
        m_events.append({.kind = call.kind,
                         .name = isOfFolder ? QByteArray() : call.path.sliced(m_folder.size() + 1),
                         .offset = call.offset,
                         .bytes = call.bytes.toByteArray()});
        return DiskAnswer();
    });
}

qsizetype RecordedDisk::now() const
{
    const std::scoped_lock lock(m_mutex);
    return m_events.size();
}

void RecordedDisk::stop()
{
    m_calls.reset();
}

QHash<QByteArray, RecordedDisk::File> RecordedDisk::filesAfter(qsizetype length) const
{
    QHash<QByteArray, File> files;
    for (const Event &event : m_events.first(length)) {
        switch (event.kind) {
        case Kind::create:
            files[event.name] = {.synced = {}, .unsynced = {}, .isThere = true};
            break;
        case Kind::remove:
            files[event.name].isThere = false;
            files[event.name].isCertain = false;
            break;
        case Kind::write:
        case Kind::truncate:
            files[event.name].unsynced.append(event);
            break;
        case Kind::sync:
            if (event.name.isEmpty()) {
                for (File &file : files)
                    file.isCertain = true;
                break;
            }
            for (const Event &change : std::exchange(files[event.name].unsynced, {}))
                apply(files[event.name].synced, change.kind, change.offset, change.bytes);
            break;
        case Kind::rename:
            qFatal("no file is renamed here");
        case Kind::open:
        case Kind::read:
        case Kind::makeFolder:
        case Kind::setMode:
            break;
        }
    }
    return files;
}

QByteArray RecordedDisk::remains(const File &file, QRandomGenerator &random)
{
    QList<Event> changes = file.unsynced;
    if (random.bounded(2) == 0)
        std::shuffle(changes.begin(), changes.end(), random);
    QByteArray contents = file.synced;
    for (const Event &change : std::as_const(changes)) {
        qsizetype size = change.bytes.size();
        switch (random.bounded(4)) {
        case 0:
            continue;
        case 1:
            size = random.bounded(size / sectorSize + 1) * sectorSize;
            break;
        default:
            break;
        }
        apply(contents, change.kind, change.offset, QByteArrayView(change.bytes).first(size));
    }
    return contents;
}

void RecordedDisk::rebuild(qsizetype length, QRandomGenerator &random, const QString &target) const
{
    const auto files = filesAfter(length);
    // In an order of their own, so that the same numbers give the same disk.
    QList<QByteArray> names = files.keys();
    std::ranges::sort(names);
    for (const QByteArray &name : std::as_const(names)) {
        const File &file = files[name];
        const bool isThere = file.isCertain ? file.isThere : random.bounded(2) == 0;
        // What SQLite keeps in memory only, although it looks like a file.
        if (!isThere || name.endsWith("-shm"))
            continue;
        QFile copy(QDir(target).filePath(QFile::decodeName(name)));
        if (!copy.open(QFile::WriteOnly) || copy.write(remains(file, random)) < 0)
            qFatal("cannot rebuild %s", qPrintable(copy.fileName()));
    }
}
