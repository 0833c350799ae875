#include "PngLayout.h"

#include "ByteReader.h"

#include <algorithm>
#include <array>

namespace {

constexpr quint32 chunkType(const char (&name)[5])
{
    return quint32(name[0]) << 24 | quint32(name[1]) << 16 | quint32(name[2]) << 8
        | quint32(name[3]);
}

/// By colour type: gray, colours, palette, gray with alpha, colours with alpha; 0 for no such type.
constexpr std::array<int, 7> samplesPerPixel{1, 0, 3, 1, 2, 0, 4};

} // namespace

std::optional<PngLayout> pngLayout(QByteArrayView png)
{
    constexpr qsizetype signatureSize = 8;
    constexpr qsizetype headerEnd = 33;
    constexpr qsizetype frameSize = 12; // Length, type and check sum around a chunk's data.
    constexpr quint32 greatestSide = 0x7FFFFFFF;

    const ByteReader reader(png, ByteReader::BigEndian);
    if (png.size() < headerEnd || reader.u32(12) != chunkType("IHDR"))
        return std::nullopt;
    const quint32 width = reader.u32(16).value_or(0);
    const quint32 height = reader.u32(20).value_or(0);
    const int bitsPerSample = quint8(png[24]);
    const auto colorType = size_t(quint8(png[25]));
    if (width == 0 || height == 0 || width > greatestSide || height > greatestSide
        || bitsPerSample > 16 || colorType >= samplesPerPixel.size()
        || samplesPerPixel[colorType] == 0)
        return std::nullopt;

    PngLayout layout{.size = QSize(int(width), int(height)),
                     .bitsPerSample = bitsPerSample,
                     .bitsPerPixel = bitsPerSample * samplesPerPixel[colorType]};
    layout.unpackedBytes = ((qint64(width) * layout.bitsPerPixel + 7) / 8 + 1) * height;
    for (qsizetype at = signatureSize; at < png.size();) {
        const quint32 type = reader.u32(at + 4).value_or(chunkType("IEND"));
        if (type == chunkType("IEND"))
            break;
        const qsizetype data = at + 8;
        const qsizetype length = std::min<qsizetype>(reader.u32(at).value_or(0), png.size() - data);
        if (type == chunkType("IDAT"))
            layout.compressedBytes += length;
        if (type == chunkType("eXIf"))
            layout.exif = png.sliced(data, length);
        at += length + frameSize;
    }
    return layout;
}
