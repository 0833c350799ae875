#pragma once

#include <QByteArrayView>
#include <QSize>

#include <optional>

/// What the header and the chunks of a PNG file say about the work of decoding it.
struct PngLayout
{
    QSize size;
    /// Bits of one sample, and of one pixel with all its samples.
    int bitsPerSample = 1;
    int bitsPerPixel = 1;
    /// Length of the compressed pixels, in bytes.
    qint64 compressedBytes = 0;
    /// Length of the pixels unpacked, in bytes, with a filter's byte for every row.
    qint64 unpackedBytes = 0;
    /// What the eXIf chunk holds; empty when there is none. Part of the bytes given.
    QByteArrayView exif = {};
};

/// Nothing when the header is invalid. Damage after the header is left to the decoder.
std::optional<PngLayout> pngLayout(QByteArrayView png);
