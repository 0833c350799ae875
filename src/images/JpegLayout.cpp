#include "JpegLayout.h"

#include "ByteReader.h"

#include <algorithm>

namespace {

constexpr quint8 startOfScan = 0xDA;
constexpr quint8 endOfImage = 0xD9;

bool isStartOfFrame(quint8 marker)
{
    constexpr quint8 huffmanTable = 0xC4;
    constexpr quint8 extension = 0xC8;
    constexpr quint8 arithmeticTable = 0xCC;
    return marker >= 0xC0 && marker <= 0xCF && marker != huffmanTable && marker != extension
        && marker != arithmeticTable;
}

bool isProgressive(quint8 startOfFrame)
{
    return (startOfFrame & 3) == 2;
}

/// Markers without a length: stuffed bytes, restarts, TEM, start of image.
bool standsAlone(quint8 marker)
{
    return marker <= 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

struct Frame
{
    QSize size;
    int components = 0;
    qint64 coefficientBytes = 0;
    bool progressive = false;
};

std::optional<Frame> parseFrame(const ByteReader &reader, const QByteArray &jpeg, qsizetype segment,
                                quint8 marker)
{
    constexpr qsizetype bytesPerComponent = 3;
    const auto height = reader.u16(segment + 3);
    const auto width = reader.u16(segment + 5);
    if (!height || !width || *height == 0 || *width == 0 || segment + 7 >= jpeg.size())
        return std::nullopt;
    Frame frame{.size = QSize(*width, *height),
                .components = quint8(jpeg[segment + 7]),
                .progressive = isProgressive(marker)};
    const qsizetype table = segment + 8;
    if (frame.components == 0 || table + bytesPerComponent * frame.components > jpeg.size())
        return std::nullopt;

    qint64 widest = 1;
    qint64 tallest = 1;
    qint64 blocksPerUnit = 0;
    for (int i = 0; i < frame.components; ++i) {
        const auto sampling = quint8(jpeg[table + bytesPerComponent * i + 1]);
        const qint64 across = std::max(1, sampling >> 4);
        const qint64 down = std::max(1, sampling & 15);
        widest = std::max(widest, across);
        tallest = std::max(tallest, down);
        blocksPerUnit += across * down;
    }
    constexpr qint64 blockSide = 8;
    constexpr qint64 bytesPerBlock = blockSide * blockSide * qint64(sizeof(qint16));
    const qint64 unitsAcross = (*width + widest * blockSide - 1) / (widest * blockSide);
    const qint64 unitsDown = (*height + tallest * blockSide - 1) / (tallest * blockSide);
    frame.coefficientBytes = unitsAcross * unitsDown * blocksPerUnit * bytesPerBlock;
    return frame;
}

} // namespace

std::optional<JpegLayout> jpegLayout(const QByteArray &jpeg)
{
    const ByteReader reader(jpeg, ByteReader::BigEndian);
    std::optional<Frame> frame;
    JpegLayout layout;
    qsizetype at = 0;
    while ((at = jpeg.indexOf('\xFF', at)) >= 0 && at + 1 < jpeg.size()) {
        const auto marker = quint8(jpeg[at + 1]);
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        const qsizetype segment = at + 2;
        at = segment;
        if (standsAlone(marker))
            continue;
        if (marker == endOfImage)
            break;
        if (isStartOfFrame(marker) && !frame) {
            frame = parseFrame(reader, jpeg, segment, marker);
            if (!frame)
                return std::nullopt;
            layout.size = frame->size;
        }
        if (marker == startOfScan) {
            if (!frame || segment + 2 >= jpeg.size())
                break;
            const bool isWhole = quint8(jpeg[segment + 2]) == frame->components;
            if (++layout.scans == 1 && (frame->progressive || !isWhole))
                layout.coefficientBytes = frame->coefficientBytes;
        }
        at += reader.u16(segment).value_or(0);
    }
    if (layout.scans == 0)
        return std::nullopt;
    return layout;
}

std::optional<QSize> plainJpegSize(const QByteArray &jpeg)
{
    constexpr quint16 startOfImage = 0xFFD8;
    constexpr quint8 metadata = 0xE1;
    const ByteReader reader(jpeg, ByteReader::BigEndian);
    if (reader.u16(0) != startOfImage)
        return std::nullopt;
    qsizetype at = 2;
    while (const auto bytes = reader.u16(at)) {
        const auto marker = quint8(*bytes);
        if (*bytes >> 8 != 0xFF || standsAlone(marker) || marker == metadata
            || marker == startOfScan)
            return std::nullopt;
        const qsizetype segment = at + 2;
        if (isStartOfFrame(marker)) {
            const auto frame = parseFrame(reader, jpeg, segment, marker);
            return frame ? std::optional(frame->size) : std::nullopt;
        }
        at = segment + reader.u16(segment).value_or(0);
    }
    return std::nullopt;
}
