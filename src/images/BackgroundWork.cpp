#include "BackgroundWork.h"

QThreadPool *decodingPool()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(1);
    return &pool;
}
