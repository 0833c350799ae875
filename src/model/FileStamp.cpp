#include "FileStamp.h"

#include <QFile>

#include <cerrno>
#include <sys/stat.h>

namespace {

FileStamp stamp(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    const timespec modified = status.st_mtimespec;
#else
    const timespec modified = status.st_mtim;
#endif
    return {status.st_dev, status.st_ino, status.st_size, modified};
}

} // namespace

std::optional<FileStamp> FileStamp::of(const QString &path)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    if (stat(name.constData(), &status) == 0)
        return stamp(status);
    if (errno == ELOOP && lstat(name.constData(), &status) == 0)
        return stamp(status);
    return errno == ENOENT || errno == ENOTDIR ? std::optional(FileStamp()) : std::nullopt;
}

std::optional<FileStamp> FileStamp::of(int fileDescriptor)
{
    struct stat status = {};
    return fstat(fileDescriptor, &status) == 0 ? std::optional(stamp(status)) : std::nullopt;
}

bool FileStamp::isSameFile(const FileStamp &other) const
{
    return device == other.device && inode == other.inode;
}

bool FileStamp::operator==(const FileStamp &other) const
{
    return isSameFile(other) && size == other.size && modified.tv_sec == other.modified.tv_sec
        && modified.tv_nsec == other.modified.tv_nsec;
}
