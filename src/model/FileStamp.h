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

    /// Follows symbolic links; of links in a circle it is the stamp of the first. The stamp of a
    /// missing file when there certainly is none, and nothing when that cannot be found out.
    static std::optional<FileStamp> of(const QString &path);
    /// Of an open file.
    static std::optional<FileStamp> of(int fileDescriptor);

    bool isMissing() const { return inode == 0; }
    bool isSameFile(const FileStamp &other) const;
    bool operator==(const FileStamp &other) const;
};
