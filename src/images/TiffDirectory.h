#pragma once

#include "ByteReader.h"

#include <QByteArrayView>

#include <optional>

/// The first directory of a TIFF file or of EXIF data, which have the same form.
class TiffDirectory
{
public:
    enum Tag : quint16 {
        ImageWidth = 256,
        ImageLength = 257,
        BitsPerSample = 258,
        Orientation = 274,
        SamplesPerPixel = 277,
        RowsPerStrip = 278,
        TileWidth = 322,
        TileLength = 323,
    };

    /// `tiff` is borrowed.
    explicit TiffDirectory(QByteArrayView tiff);

    /// The first number of the entry, or nothing when there is no such entry.
    std::optional<quint32> value(Tag tag) const;

private:
    ByteReader m_reader;
    qsizetype m_entries = 0;
    int m_count = 0;
};
