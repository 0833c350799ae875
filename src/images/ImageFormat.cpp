#include "ImageFormat.h"

#include "ByteReader.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>

namespace {

/// HEIC is one of many kinds of ISO media file; only the brands of still HEVC pictures count.
bool isHeic(QByteArrayView bytes)
{
    constexpr std::array brands{"heic", "heix", "heim", "heis"};
    constexpr qsizetype brandSize = 4;
    constexpr qsizetype majorBrandOffset = 8;
    constexpr qsizetype minorVersionOffset = 12;
    if (bytes.size() < minorVersionOffset || bytes.sliced(4, 4) != QByteArrayView("ftyp"))
        return false;
    const qsizetype boxEnd = std::min<qsizetype>(
        ByteReader(bytes, ByteReader::BigEndian).u32(0).value_or(0), bytes.size());
    for (qsizetype at = majorBrandOffset; at + brandSize <= boxEnd; at += brandSize) {
        if (at == minorVersionOffset)
            continue;
        const QByteArrayView brand = bytes.sliced(at, brandSize);
        if (std::any_of(brands.begin(), brands.end(),
                        [&](const char *known) { return brand == QByteArrayView(known); }))
            return true;
    }
    return false;
}

} // namespace

std::optional<ImageFormat> imageFormat(const QByteArray &bytes)
{
    if (bytes.startsWith("\xFF\xD8\xFF"))
        return ImageFormat::Jpeg;
    if (bytes.startsWith("\x89PNG\r\n\x1A\n"))
        return ImageFormat::Png;
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a"))
        return ImageFormat::Gif;
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return ImageFormat::Webp;
    if (bytes.startsWith("BM"))
        return ImageFormat::Bmp;
    if (bytes.startsWith(QByteArrayView("II\x2A\0", 4))
        || bytes.startsWith(QByteArrayView("MM\0\x2A", 4)))
        return ImageFormat::Tiff;
    if (isHeic(bytes))
        return ImageFormat::Heic;
    return std::nullopt;
}

QByteArray readerName(ImageFormat format)
{
    switch (format) {
    case ImageFormat::Jpeg:
        return "jpeg";
    case ImageFormat::Png:
        return "png";
    case ImageFormat::Gif:
        return "gif";
    case ImageFormat::Webp:
        return "webp";
    case ImageFormat::Bmp:
        return "bmp";
    case ImageFormat::Tiff:
        return "tiff";
    case ImageFormat::Heic:
#ifdef AULORA_HEIF_PLUGIN
        return "aulora-heic";
#else
        return "heic";
#endif
    }
    Q_UNREACHABLE();
}
