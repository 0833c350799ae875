#include "DecodingCost.h"

#include "ImageLimits.h"
#include "JpegLayout.h"
#include "TiffLayout.h"

namespace {

qint64 pixelCount(QSize size)
{
    return qint64(size.width()) * size.height();
}

std::optional<DecodingCost> jpegCost(const QByteArray &bytes)
{
    const auto layout = jpegLayout(bytes);
    if (!layout)
        return std::nullopt;
    return DecodingCost{.bytes = layout->coefficientBytes,
                        .work = pixelCount(layout->size) * layout->scans,
                        .scalesWhileReading = true};
}

std::optional<DecodingCost> pngCost(const QByteArray &bytes, QSize size)
{
    constexpr qsizetype bitDepthOffset = 24;
    constexpr qsizetype colorTypeOffset = 25;
    constexpr qsizetype interlaceOffset = 28;
    constexpr int gray = 0;
    constexpr int palette = 3;
    if (bytes.size() <= interlaceOffset)
        return std::nullopt;
    const int bitDepth = quint8(bytes[bitDepthOffset]);
    const int colorType = quint8(bytes[colorTypeOffset]);
    const bool isIndexed = bitDepth <= 8 && (colorType == palette || colorType == gray);
    const int bytesPerPixel = isIndexed ? 1 : bitDepth <= 8 ? 4 : 8;
    DecodingCost cost{.bytes = pixelCount(size) * bytesPerPixel, .work = pixelCount(size)};
    // The reader can shrink row by row what it reads as 32 bits a pixel from the top to the bottom.
    // It mixes the colours of transparent pixels in, so that is for what is too large as a whole.
    const bool isInterlaced = bytes[interlaceOffset] != 0;
    if (cost.bytes > maximumDecodingBytes && bytesPerPixel == 4 && !isInterlaced) {
        cost.bytes = 0;
        cost.scalesWhileReading = true;
    }
    return cost;
}

/// The lossless decoder holds the whole picture once more than the lossy one, whether it decodes
/// colours or transparency, for which there is a plane besides. An animation is composed in a
/// picture of its own.
DecodingCost webpCost(const QByteArray &bytes, QSize size)
{
    constexpr qsizetype flagsOffset = 20;
    constexpr char animationFlag = 0x02;
    constexpr int pictureBytes = 4;
    constexpr int alphaPlaneBytes = 1;
    int bytesPerPixel = pictureBytes;
    if (bytes.contains("VP8L") || bytes.contains("ALPH"))
        bytesPerPixel += pictureBytes;
    if (bytes.contains("ALPH"))
        bytesPerPixel += alphaPlaneBytes;
    if (bytes.mid(12, 4) == "VP8X" && (bytes.mid(flagsOffset, 1).append('\0')[0] & animationFlag))
        bytesPerPixel += pictureBytes;
    return {.bytes = pixelCount(size) * bytesPerPixel, .work = pixelCount(size)};
}

std::optional<DecodingCost> tiffCost(const QByteArray &bytes, QSize size)
{
    const auto layout = tiffLayout(bytes);
    if (!layout || layout->pieceBytes > maximumDecodingBytes)
        return std::nullopt;
    const int bytesPerPixel = layout->bitsPerSample <= 8 ? 4 : layout->bitsPerSample <= 16 ? 8 : 16;
    return DecodingCost{.bytes = pixelCount(size) * bytesPerPixel + layout->pieceBytes,
                        .work = pixelCount(size)};
}

} // namespace

std::optional<DecodingCost> decodingCost(const QByteArray &bytes, ImageFormat format, QSize size)
{
    switch (format) {
    case ImageFormat::Jpeg:
        return jpegCost(bytes);
    case ImageFormat::Png:
        return pngCost(bytes, size);
    case ImageFormat::Webp:
        return webpCost(bytes, size);
    case ImageFormat::Tiff:
        return tiffCost(bytes, size);
    case ImageFormat::Gif:
        // The screen, and the picture below a frame that is taken away again.
        return DecodingCost{.bytes = pixelCount(size) * 8, .work = pixelCount(size)};
    case ImageFormat::Bmp:
        return DecodingCost{.bytes = pixelCount(size) * 4, .work = pixelCount(size)};
    case ImageFormat::Heic:
        return DecodingCost{.bytes = 0, .work = pixelCount(size), .scalesWhileReading = true};
    }
    Q_UNREACHABLE();
}
