#include "DecodingCost.h"

#include "ByteReader.h"
#include "ImageLimits.h"
#include "JpegLayout.h"
#include "PngLayout.h"
#include "TiffLayout.h"

namespace {

qint64 pixelCount(QSize size)
{
    return qint64(size.width()) * size.height();
}

} // namespace

std::optional<DecodingCost> jpegCost(const QByteArray &jpeg, QSize)
{
    const auto layout = jpegLayout(jpeg);
    if (!layout)
        return std::nullopt;
    return DecodingCost{.bytes = layout->coefficientBytes,
                        .work = pixelCount(layout->size) * layout->scans,
                        .scalesWhileReading = true};
}

std::optional<DecodingCost> pngCost(const QByteArray &png, QSize size)
{
    const auto layout = pngLayout(png);
    // What does not shrink takes little more than its own size: what is longer than twice that goes
    // on behind the last row.
    constexpr qint64 slack = 1 << 16;
    if (!layout || layout->compressedBytes > 2 * layout->unpackedBytes + slack)
        return std::nullopt;
    // libpng holds the row before, the row as it was packed and as it is given out; we hold
    // another.
    constexpr int rows = 4;
    constexpr int largestPixelBytes = 8;
    return DecodingCost{.bytes = qint64(size.width()) * largestPixelBytes * rows,
                        .work = pixelCount(size) + layout->unpackedBytes / 4,
                        .scalesWhileReading = true};
}

std::optional<DecodingCost> gifCost(const QByteArray &, QSize size)
{
    // One row, as indices and as colours.
    constexpr int pixelBytes = 5;
    return DecodingCost{.bytes = qint64(size.width()) * pixelBytes,
                        .work = pixelCount(size),
                        .scalesWhileReading = true};
}

/// The lossless decoder holds the whole picture, the lossy one a few rows. Transparency of a lossy
/// picture is a plane, maybe from the lossless decoder, and such a picture is shrunk when it is
/// whole.
std::optional<DecodingCost> webpCost(const QByteArray &webp, QSize size)
{
    constexpr int pictureBytes = 4;
    constexpr int alphaPlaneBytes = 1;
    int bytesPerPixel = 0;
    if (webp.contains("ALPH"))
        bytesPerPixel = 2 * pictureBytes + alphaPlaneBytes;
    else if (webp.contains("VP8L"))
        bytesPerPixel = pictureBytes;
    return DecodingCost{.bytes = pixelCount(size) * bytesPerPixel,
                        .work = pixelCount(size),
                        .scalesWhileReading = true};
}

std::optional<DecodingCost> bmpCost(const QByteArray &bmp, QSize size)
{
    constexpr qsizetype bitsPerPixelOffset = 28;
    const auto bitsPerPixel
        = ByteReader(bmp, ByteReader::LittleEndian).u16(bitsPerPixelOffset).value_or(0);
    const int bytesPerPixel = bitsPerPixel <= 8 ? 1 : 4;
    return DecodingCost{.bytes = pixelCount(size) * bytesPerPixel, .work = pixelCount(size)};
}

std::optional<DecodingCost> tiffCost(const QByteArray &tiff, QSize size)
{
    const auto layout = tiffLayout(tiff);
    if (!layout || layout->pieceBytes > maximumDecodingBytes)
        return std::nullopt;
    // Gray and palettes Qt keeps as they are, everything else in four samples of 8, 16 or 32 bits.
    const bool isGray = layout->samplesPerPixel == 1 && layout->bitsPerSample <= 16;
    const int samples = isGray ? 1 : 4;
    const int bytesPerSample = layout->bitsPerSample <= 8 ? 1 : layout->bitsPerSample <= 16 ? 2 : 4;
    return DecodingCost{.bytes = pixelCount(size) * samples * bytesPerSample + layout->pieceBytes,
                        .work = pixelCount(size)};
}

std::optional<DecodingCost> heicCost(const QByteArray &, QSize size)
{
    // What its pictures take only libheif's own parser tells: the plug-in keeps to the limit.
    return DecodingCost{.bytes = 0, .work = pixelCount(size), .scalesWhileReading = true};
}
