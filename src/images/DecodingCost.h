#pragma once

#include "ImageFormat.h"

#include <QByteArray>
#include <QSize>

#include <optional>

/// What reading an image takes, estimated from above and from its header alone, before any memory
/// is given to it.
struct DecodingCost
{
    /// Peak memory in bytes, besides the file itself and an image of the size asked for.
    qint64 bytes = 0;
    /// Pixels visited, counting every pass.
    qint64 work = 0;
    /// The reader makes the small image while it reads, quicker than from the whole one.
    bool scalesWhileReading = false;
};

/// `size` is what the reader says the image has. Nothing when the header makes no sense.
std::optional<DecodingCost> decodingCost(const QByteArray &bytes, ImageFormat format, QSize size);
