#include "ResourceUse.h"

#include <QByteArray>
#include <QFile>

#include <ctime>
#include <malloc.h>

namespace {

qint64 memoryAtReset = 0;

/// A line of /proc/self/status, in kilobytes.
qint64 statusValue(const QByteArray &key)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(key.size() + 1).simplified().split(' ').first().toLongLong();
    }
    return 0;
}

} // namespace

std::chrono::nanoseconds threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

qint64 memoryGrowth()
{
    return (statusValue("VmHWM") - memoryAtReset) / 1024;
}

void resetMemoryPeak()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        file.write("5");
    memoryAtReset = statusValue("VmRSS");
}

bool canMeasureMemory()
{
#ifdef __SANITIZE_ADDRESS__
    return false; // The sanitizer's own memory would be counted.
#else
    return QFile(QStringLiteral("/proc/self/clear_refs")).open(QIODevice::WriteOnly);
#endif
}
