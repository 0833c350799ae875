#include "GifReading.h"

#include "AreaAverage.h"
#include "ByteReader.h"
#include "ImageLimits.h"

#include <QList>

#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>

namespace {

int readBytes(GifFileType *gif, GifByteType *bytes, int count)
{
    auto *rest = static_cast<QByteArrayView *>(gif->UserData);
    const auto read = std::min<qsizetype>(count, rest->size());
    if (read > 0)
        std::memcpy(bytes, rest->data(), size_t(read));
    *rest = rest->sliced(read);
    return int(read);
}

struct CloseGif
{
    void operator()(GifFileType *gif) const { DGifCloseFile(gif, nullptr); }
};

/// Reads one extension block; the index of the transparent colour, when it names one.
std::optional<int> readExtension(GifFileType *gif, bool *isRead)
{
    std::optional<int> transparent;
    int code = 0;
    GifByteType *block = nullptr;
    *isRead = DGifGetExtension(gif, &code, &block) == GIF_OK;
    while (*isRead && block) {
        GraphicsControlBlock control;
        if (code == GRAPHICS_EXT_FUNC_CODE
            && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK
            && control.TransparentColor != NO_TRANSPARENT_COLOR)
            transparent = control.TransparentColor;
        *isRead = DGifGetExtensionNext(gif, &block) == GIF_OK;
    }
    return transparent;
}

/// Whether the file has a picture, and the index of its transparent colour, or -1.
struct FirstPicture
{
    bool isFound = false;
    int transparent = NO_TRANSPARENT_COLOR;
};

FirstPicture findFirstPicture(GifFileType *gif)
{
    FirstPicture picture;
    GifRecordType record = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(gif, &record) == GIF_OK) {
        if (record == IMAGE_DESC_RECORD_TYPE) {
            picture.isFound = DGifGetImageDesc(gif) == GIF_OK;
            return picture;
        }
        bool isRead = false;
        if (record == EXTENSION_RECORD_TYPE)
            picture.transparent = readExtension(gif, &isRead).value_or(picture.transparent);
        if (!isRead)
            return picture;
    }
    return picture;
}

using Pixel = std::array<uchar, 4>;

/// The pixel for each index; transparent for indices without a colour.
std::array<Pixel, 256> palette(const ColorMapObject *colors, int transparent)
{
    constexpr uchar opaque = 255;
    std::array<Pixel, 256> pixels{};
    for (int i = 0; i < std::min<int>(colors->ColorCount, int(pixels.size())); ++i) {
        const GifColorType &color = colors->Colors[i];
        if (i != transparent)
            pixels[i] = {color.Red, color.Green, color.Blue, opaque};
    }
    return pixels;
}

/// The rows of a picture in the order in which they come.
QList<int> rowOrder(int height, bool isInterlaced)
{
    struct Pass
    {
        int first;
        int step;
    };
    constexpr std::array wholePass{Pass{0, 1}};
    constexpr std::array interlacedPasses{Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}};
    QList<int> rows;
    rows.reserve(height);
    const auto append = [&](Pass pass) {
        for (int row = pass.first; row < height; row += pass.step)
            rows.append(row);
    };
    if (isInterlaced)
        std::for_each(interlacedPasses.begin(), interlacedPasses.end(), append);
    else
        std::for_each(wholePass.begin(), wholePass.end(), append);
    return rows;
}

} // namespace

std::optional<ImageHeader> gifHeader(QByteArrayView gif)
{
    constexpr qsizetype screenWidthOffset = 6;
    constexpr qsizetype screenHeightOffset = 8;
    const ByteReader reader(gif, ByteReader::LittleEndian);
    const auto width = reader.u16(screenWidthOffset);
    const auto height = reader.u16(screenHeightOffset);
    if (!width || !height)
        return std::nullopt;
    return ImageHeader{.size = QSize(*width, *height), .transformation = {}};
}

QImage decodedGif(QByteArrayView bytes, QSize size)
{
    int error = 0;
    const std::unique_ptr<GifFileType, CloseGif> gif(DGifOpen(&bytes, readBytes, &error));
    if (!gif)
        return {};
    const FirstPicture picture = findFirstPicture(gif.get());
    const GifImageDesc &frame = gif->Image;
    const ColorMapObject *colors = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
    if (!picture.isFound || !colors || frame.Width <= 0 || frame.Height <= 0
        || qint64(frame.Width) * frame.Height > maximumImagePixels)
        return {};

    const auto pixels = palette(colors, picture.transparent);
    AreaAverage average(QSize(gif->SWidth, gif->SHeight), size);
    QByteArray indices(frame.Width, Qt::Uninitialized);
    QList<Pixel> row(frame.Width);
    for (const int y : rowOrder(frame.Height, frame.Interlace)) {
        auto *line = reinterpret_cast<GifPixelType *>(indices.data());
        if (DGifGetLine(gif.get(), line, frame.Width) != GIF_OK)
            return {};
        std::transform(line, line + frame.Width, row.begin(),
                       [&](GifPixelType index) { return pixels[index]; });
        average.addRow(frame.Top + y, row.constFirst().data(), frame.Width, frame.Left);
    }
    return average.image();
}
