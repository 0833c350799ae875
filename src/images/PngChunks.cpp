#include "PngChunks.h"

#include "ByteReader.h"

#include <algorithm>
#include <array>

QByteArray withoutNeedlessChunks(const QByteArray &png)
{
    constexpr qsizetype signatureSize = 8;
    constexpr qsizetype frameSize = 12; // Length, type and check sum around a chunk's data.
    constexpr std::array needed{"IHDR", "PLTE", "IDAT", "IEND", "tRNS",
                                "iCCP", "gAMA", "cHRM", "sRGB"};

    const ByteReader reader(png, ByteReader::BigEndian);
    QByteArray kept = png.first(std::min(signatureSize, png.size()));
    kept.reserve(png.size());
    qsizetype at = signatureSize;
    while (const auto length = reader.u32(at)) {
        const qsizetype chunkSize = std::min(qsizetype(*length) + frameSize, png.size() - at);
        const QByteArrayView chunk = QByteArrayView(png).sliced(at, chunkSize);
        const QByteArrayView type = chunk.sliced(4, std::min<qsizetype>(4, chunkSize - 4));
        if (std::any_of(needed.begin(), needed.end(),
                        [&](const char *name) { return type == QByteArrayView(name); }))
            kept.append(chunk);
        at += chunkSize;
    }
    return kept;
}
