#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

/// One call of this process to the system that concerns a file beneath the observed folder, before
/// it is made.
struct DiskCall
{
    enum class Kind {
        open, ///< of a file that is there
        create, ///< of one that is not
        read,
        write,
        truncate,
        sync, ///< of a file or of a folder
        remove,
        rename,
        makeFolder,
        setMode,
    };

    Kind kind;
    QByteArray path;
    /// Where it writes, and the new size for `truncate`.
    qint64 offset = 0;
    /// What it writes.
    QByteArrayView bytes;
};

/// What becomes of a call.
struct DiskAnswer
{
    /// The call fails with this `errno`; 0 lets it through.
    int error = 0;
    /// Of a write: how much of it is done.
    qint64 sizeLimit = -1;
};

/// Takes the place of the C library's file functions for the whole program, SQLite and Qt
/// included, which must export its symbols. While one of these lives, `answer` is asked about every
/// call that concerns `folder` or what is beneath it, one at a time, on whatever thread makes it.
/// Nothing really waits for the disk then.
class DiskCalls
{
public:
    using Answer = std::function<DiskAnswer(const DiskCall &)>;

    DiskCalls(const QByteArray &folder, Answer answer);
    ~DiskCalls();

    DiskCalls(const DiskCalls &) = delete;
    DiskCalls &operator=(const DiskCalls &) = delete;
};
