#include "PngChunks.h"

#include "ByteReader.h"

#include <algorithm>

namespace {

constexpr quint32 chunkType(const char (&name)[5])
{
    return quint32(name[0]) << 24 | quint32(name[1]) << 16 | quint32(name[2]) << 8
        | quint32(name[3]);
}

constexpr quint32 endType = chunkType("IEND");

bool isNeeded(quint32 type)
{
    switch (type) {
    case chunkType("IHDR"):
    case chunkType("PLTE"):
    case chunkType("IDAT"):
    case chunkType("tRNS"):
    case chunkType("iCCP"):
    case chunkType("gAMA"):
    case chunkType("cHRM"):
    case chunkType("sRGB"):
    case endType:
        return true;
    default:
        return false;
    }
}

} // namespace

QByteArray withoutNeedlessChunks(const QByteArray &png)
{
    constexpr qsizetype signatureSize = 8;
    constexpr qsizetype frameSize = 12; // Length, type and check sum around a chunk's data.

    const ByteReader reader(png, ByteReader::BigEndian);
    QByteArray kept = png.first(std::min(signatureSize, png.size()));
    kept.reserve(png.size());
    qsizetype at = signatureSize;
    quint32 type = 0;
    while (type != endType && at < png.size()) {
        const qsizetype length = reader.u32(at).value_or(0);
        type = reader.u32(at + 4).value_or(endType);
        const qsizetype chunkSize = std::min(length + frameSize, png.size() - at);
        if (isNeeded(type))
            kept.append(png.constData() + at, chunkSize);
        at += chunkSize;
    }
    return kept;
}
