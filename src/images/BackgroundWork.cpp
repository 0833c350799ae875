#include "BackgroundWork.h"

#include <QDeadlineTimer>

namespace {

// Never destroyed: a pool's destructor waits for its threads, and one of them may hang.
QThreadPool *makePool(int threads)
{
    auto *pool = new QThreadPool;
    pool->setMaxThreadCount(threads);
    return pool;
}

} // namespace

QThreadPool *decodingPool()
{
    static QThreadPool *const pool = makePool(1);
    return pool;
}

QThreadPool *loadingPool()
{
    constexpr int threads = 8;
    static QThreadPool *const pool = makePool(threads);
    return pool;
}

bool finishBackgroundWork(std::chrono::milliseconds patience)
{
    decodingPool()->clear();
    loadingPool()->clear();
    const QDeadlineTimer deadline(patience);
    return decodingPool()->waitForDone(int(deadline.remainingTime()))
        && loadingPool()->waitForDone(int(deadline.remainingTime()));
}
