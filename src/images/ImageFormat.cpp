#include "ImageFormat.h"

#include "ByteReader.h"

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
    // Some databases take HEIC for another name of HEIF, its container; what phones take is
    // image/heic.
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
