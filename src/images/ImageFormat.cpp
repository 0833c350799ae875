#include "ImageFormat.h"

#include "ByteReader.h"
#include "ImageLimits.h"
#include "JpegLayout.h"
#include "PngLayout.h"
#include "TiffLayout.h"

#include <algorithm>

namespace {

bool isJpeg(QByteArrayView bytes)
{
    return bytes.startsWith("\xFF\xD8\xFF");
}

bool isPng(QByteArrayView bytes)
{
    return bytes.startsWith("\x89PNG\r\n\x1A\n");
}

bool isGif(QByteArrayView bytes)
{
    return bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a");
}

bool isWebp(QByteArrayView bytes)
{
    constexpr qsizetype nameOffset = 8;
    return bytes.startsWith("RIFF") && bytes.size() > nameOffset
        && bytes.sliced(nameOffset).startsWith("WEBP");
}

bool isBmp(QByteArrayView bytes)
{
    return bytes.startsWith("BM");
}

bool isTiff(QByteArrayView bytes)
{
    return bytes.startsWith(QByteArrayView("II\x2A\0", 4))
        || bytes.startsWith(QByteArrayView("MM\0\x2A", 4));
}

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

qint64 pixelCount(QSize size)
{
    return qint64(size.width()) * size.height();
}

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
    // Pixels that do not compress take little more than their own size. Data of more than twice
    // that goes on behind the last row.
    constexpr qint64 slack = 1 << 16;
    if (!layout || layout->compressedBytes > 2 * layout->unpackedBytes + slack)
        return std::nullopt;
    // libpng holds the previous row, the row as stored and the row as returned; we hold a fourth.
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

/// The lossless decoder holds the whole picture, the lossy one a few rows. A lossy picture with
/// transparency has another plane for it, possibly lossless, and is scaled down only when it is
/// decoded whole.
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
    // Qt keeps gray and palette pictures as they are, all others in four samples of 8, 16 or 32
    // bits.
    const bool isGray = layout->samplesPerPixel == 1 && layout->bitsPerSample <= 16;
    const int samples = isGray ? 1 : 4;
    const int bytesPerSample = layout->bitsPerSample <= 8 ? 1 : layout->bitsPerSample <= 16 ? 2 : 4;
    return DecodingCost{.bytes = pixelCount(size) * samples * bytesPerSample + layout->pieceBytes,
                        .work = pixelCount(size)};
}

std::optional<DecodingCost> heicCost(const QByteArray &, QSize size)
{
    // Only libheif's parser knows how large the coded pictures are, so the plug-in checks the limit
    // itself.
    return DecodingCost{.bytes = 0, .work = pixelCount(size), .scalesWhileReading = true};
}

#ifdef AULORA_HEIF_PLUGIN
constexpr auto heicReader = "aulora-heic";
#else
constexpr auto heicReader = "heic";
#endif

constexpr std::array formats{
    ImageFormat{.reader = "jpeg",
                .hasSignature = isJpeg,
                .mediaTypes = {"image/jpeg", nullptr},
                .suffix = "jfif",
                .cost = jpegCost},
    ImageFormat{.reader = "aulora-png",
                .hasSignature = isPng,
                .mediaTypes = {"image/png", nullptr},
                .suffix = nullptr,
                .cost = pngCost},
    ImageFormat{.reader = "aulora-gif",
                .hasSignature = isGif,
                .mediaTypes = {"image/gif", nullptr},
                .suffix = nullptr,
                .cost = gifCost},
    ImageFormat{.reader = "aulora-webp",
                .hasSignature = isWebp,
                .mediaTypes = {"image/webp", nullptr},
                .suffix = nullptr,
                .cost = webpCost},
    ImageFormat{.reader = "bmp",
                .hasSignature = isBmp,
                .mediaTypes = {"image/bmp", nullptr},
                .suffix = nullptr,
                .cost = bmpCost},
    ImageFormat{.reader = "tiff",
                .hasSignature = isTiff,
                .mediaTypes = {"image/tiff", nullptr},
                .suffix = nullptr,
                .cost = tiffCost},
    // Some databases treat HEIC as another name of HEIF, its container; the photographs of phones
    // are image/heic.
    ImageFormat{.reader = heicReader,
                .hasSignature = isHeic,
                .mediaTypes = {"image/heic", "image/heif"},
                .suffix = "heic",
                .cost = heicCost},
};

static_assert(std::all_of(formats.begin(), formats.end(),
                          [](const ImageFormat &format) {
                              return format.reader && format.hasSignature && format.mediaTypes[0]
                                  && format.cost;
                          }),
              "an image format lacks what it needs to be read and named");

} // namespace

std::span<const ImageFormat> imageFormats()
{
    return formats;
}

const ImageFormat *imageFormat(QByteArrayView bytes)
{
    const auto *format
        = std::find_if(formats.begin(), formats.end(),
                       [&](const ImageFormat &candidate) { return candidate.hasSignature(bytes); });
    return format == formats.end() ? nullptr : &*format;
}
