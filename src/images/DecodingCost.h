#pragma once

#include <QtGlobal>

/// What reading an image takes, estimated from above and from its header alone, before any memory
/// is given to it.
struct DecodingCost
{
    /// Peak memory in bytes, besides the file itself and what stands for the image at the size
    /// asked for.
    qint64 bytes = 0;
    /// Pixels visited, counting every pass.
    qint64 work = 0;
    /// The reader makes the small image while it reads, quicker than from the whole one.
    bool scalesWhileReading = false;
};
