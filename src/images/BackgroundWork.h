#pragma once

#include <QFutureWatcher>
#include <QPromise>
#include <QThreadPool>

#include <chrono>
#include <memory>
#include <type_traits>

/// The one thread on which all images are decoded: two at a time would need twice the memory.
QThreadPool *decodingPool();

/// The threads on which files and other programs' images are loaded. A file on a mount that no
/// longer answers blocks one of them for ever; the others go on.
QThreadPool *loadingPool();

/// Drops what has not begun and waits for the rest, at most for `patience`. False when some work
/// still runs: the program must then end without destroying what that work uses.
bool finishBackgroundWork(std::chrono::milliseconds patience);

/// Calls `finish` with the future's result, on the thread of `context`, unless `context` is gone or
/// the work was dropped before it began. QFuture::then() with a context does the same but for one
/// thing: a context that is gone before the work is done ends a program built with assertions.
template <typename Result, typename Finish>
void whenFinished(const QFuture<Result> &future, QObject *context, Finish finish)
{
    auto *watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, finish] {
        watcher->deleteLater();
        if (watcher->future().resultCount() > 0)
            finish(watcher->result());
    });
    watcher->setFuture(future);
}

/// Runs `work` in `pool`, then `finish` with its result as whenFinished() does.
template <typename Work, typename Finish>
void runThenFinish(QThreadPool *pool, QObject *context, Work work, Finish finish)
{
    auto promise = std::make_shared<QPromise<std::invoke_result_t<Work>>>();
    whenFinished(promise->future(), context, std::move(finish));
    pool->start([promise, work = std::move(work)] {
        promise->start();
        if (!promise->isCanceled())
            promise->addResult(work());
        promise->finish();
    });
}
