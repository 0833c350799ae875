#include "DiskCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

// <fcntl.h> declares open64() in a way that a second definition cannot repeat.
#include <linux/fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Observation
{
    QByteArray folder;
    DiskCalls::Answer answer;
};

std::mutex mutex;
std::optional<Observation> observation;

using Kind = DiskCall::Kind;

/// What is said about a call; nothing when it does not concern the observed folder.
std::optional<DiskAnswer> answerFor(const DiskCall &call)
{
    const std::scoped_lock lock(mutex);
    if (!observation || !call.path.startsWith(observation->folder))
        return std::nullopt;
    return observation->answer(call);
}

bool isObserving()
{
    const std::scoped_lock lock(mutex);
    return observation.has_value();
}

QByteArray pathOf(int file)
{
    if (!isObserving())
        return {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    std::array<char, 4096> path;
    const long size = syscall(SYS_readlink, link.c_str(), path.data(), path.size());
    return {path.data(), std::max(size, 0L)};
}

bool isThere(const char *path)
{
    struct stat status = {};
    return ::lstat(path, &status) == 0;
}

/// Makes a call unless it is to fail.
template <typename Make>
auto unlessRefused(const DiskCall &call, Make make) -> decltype(make())
{
    const auto answer = answerFor(call);
    if (!answer || answer->error == 0)
        return make();
    errno = answer->error;
    return -1;
}

/// The part of a write that is to be done, or -1.
ssize_t writableSize(const DiskCall &call)
{
    const DiskAnswer answer = answerFor(call).value_or(DiskAnswer());
    if (answer.error == 0)
        return answer.sizeLimit < 0 ? call.bytes.size() : answer.sizeLimit;
    errno = answer.error;
    return -1;
}

int syncFile(int file)
{
    const DiskCall call{.kind = Kind::sync, .path = pathOf(file), .bytes = {}};
    const auto answer = answerFor(call);
    if (!answer)
        return int(syscall(SYS_fdatasync, file));
    errno = answer->error;
    return answer->error == 0 ? 0 : -1;
}

} // namespace

DiskCalls::DiskCalls(const QByteArray &folder, Answer answer)
{
    const std::scoped_lock lock(mutex);
    observation = Observation{.folder = folder, .answer = std::move(answer)};
}

DiskCalls::~DiskCalls()
{
    const std::scoped_lock lock(mutex);
    observation.reset();
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): theirs are reserved names
extern "C" {

int open64(const char *path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const bool hasMode = (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = hasMode ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    const bool isNew = (flags & O_CREAT) && isObserving() && !isThere(path);
    return unlessRefused(
        {.kind = isNew ? Kind::create : Kind::open, .path = path, .bytes = {}},
        [=] { return int(syscall(SYS_openat, AT_FDCWD, path, flags | O_LARGEFILE, mode)); });
}

ssize_t pread64(int file, void *buffer, size_t size, off64_t offset)
{
    return unlessRefused({.kind = Kind::read, .path = pathOf(file), .offset = offset, .bytes = {}},
                         [=] { return syscall(SYS_pread64, file, buffer, size, offset); });
}

ssize_t pwrite64(int file, const void *buffer, size_t size, off64_t offset)
{
    const QByteArrayView bytes(static_cast<const char *>(buffer), qsizetype(size));
    const ssize_t length = writableSize(
        {.kind = Kind::write, .path = pathOf(file), .offset = offset, .bytes = bytes});
    return length < 0 ? -1 : syscall(SYS_pwrite64, file, buffer, length, offset);
}

int ftruncate64(int file, off64_t size) noexcept
{
    return unlessRefused(
        {.kind = Kind::truncate, .path = pathOf(file), .offset = size, .bytes = {}},
        [=] { return int(syscall(SYS_ftruncate, file, size)); });
}

int fdatasync(int file)
{
    return syncFile(file);
}

int fsync(int file)
{
    return syncFile(file);
}

int unlink(const char *path) noexcept
{
    return unlessRefused({.kind = Kind::remove, .path = path, .bytes = {}},
                         [=] { return int(syscall(SYS_unlink, path)); });
}

int rename(const char *from, const char *to) noexcept
{
    return unlessRefused({.kind = Kind::rename, .path = from, .bytes = {}},
                         [=] { return int(syscall(SYS_rename, from, to)); });
}

int mkdir(const char *path, mode_t mode) noexcept
{
    return unlessRefused({.kind = Kind::makeFolder, .path = path, .bytes = {}},
                         [=] { return int(syscall(SYS_mkdir, path, mode)); });
}

int chmod(const char *path, mode_t mode) noexcept
{
    return unlessRefused({.kind = Kind::setMode, .path = path, .bytes = {}},
                         [=] { return int(syscall(SYS_chmod, path, mode)); });
}

int fchmod(int file, mode_t mode) noexcept
{
    return unlessRefused({.kind = Kind::setMode, .path = pathOf(file), .bytes = {}},
                         [=] { return int(syscall(SYS_fchmod, file, mode)); });
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
