#pragma once

#include <QString>

#include <ctime>
#include <optional>
#include <sys/types.h>

/// Which file is under a name, and when it was last written.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified = {};

    /// Of what `path` or a symbolic link there leads to; the stamp of a missing file where there is
    /// certainly none, and nothing when it cannot be looked at. Links in a circle stand for
    /// themselves.
    static std::optional<FileStamp> of(const QString &path);
    /// Of an open file.
    static std::optional<FileStamp> of(int fileDescriptor);

    bool isMissing() const { return inode == 0; }
    bool isSameFile(const FileStamp &other) const;
    bool operator==(const FileStamp &other) const;
};
