#pragma once

#include <QByteArray>
#include <QSize>

#include <optional>

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

// One function for each format. `size` is what the reader says the image has. Nothing when the
// header makes no sense.

std::optional<DecodingCost> jpegCost(const QByteArray &jpeg, QSize size);
std::optional<DecodingCost> pngCost(const QByteArray &png, QSize size);
std::optional<DecodingCost> gifCost(const QByteArray &gif, QSize size);
std::optional<DecodingCost> webpCost(const QByteArray &webp, QSize size);
std::optional<DecodingCost> bmpCost(const QByteArray &bmp, QSize size);
std::optional<DecodingCost> tiffCost(const QByteArray &tiff, QSize size);
std::optional<DecodingCost> heicCost(const QByteArray &heic, QSize size);
