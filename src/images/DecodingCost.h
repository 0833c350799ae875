#pragma once

#include <QtGlobal>

/// An upper bound of what decoding an image takes, by its header alone and before memory is
/// allocated for it.
struct DecodingCost
{
    /// Peak memory in bytes, without the file itself and the resulting image.
    qint64 bytes = 0;
    /// Pixels visited, counting every pass.
    qint64 work = 0;
    /// The reader scales down while it reads, which is faster than scaling the whole image.
    bool scalesWhileReading = false;
};
