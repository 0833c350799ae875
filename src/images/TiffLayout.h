#pragma once

#include <QByteArray>

#include <optional>

/// What the first directory of a TIFF file says about the memory that decoding takes.
struct TiffLayout
{
    /// Bytes of one decoded strip or tile, whichever the file has.
    qint64 pieceBytes = 0;
    /// Bits of one sample of one pixel, and how many samples a pixel has.
    int bitsPerSample = 1;
    int samplesPerPixel = 1;
};

/// Nothing when there is no directory with a size in it.
std::optional<TiffLayout> tiffLayout(const QByteArray &tiff);
