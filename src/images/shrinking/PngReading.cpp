#include "PngReading.h"

#include "AreaAverage.h"
#include "ExifOrientation.h"
#include "PngLayout.h"

#include <QColorSpace>
#include <QPointF>

#include <csetjmp>
#include <cstring>
#include <png.h>

namespace {

void readBytes(png_structp png, png_bytep bytes, size_t count)
{
    auto *rest = static_cast<QByteArrayView *>(png_get_io_ptr(png));
    if (size_t(rest->size()) < count)
        png_error(png, "the file ends early");
    std::memcpy(bytes, rest->data(), count);
    *rest = rest->sliced(qsizetype(count));
}

void ignoreWarning(png_structp, png_const_charp) { }

[[noreturn]] void giveUp(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

/// libpng, reading from some bytes.
class PngReader
{
public:
    explicit PngReader(QByteArrayView bytes)
        : m_rest(bytes)
        , m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, giveUp, ignoreWarning))
        , m_info(m_png ? png_create_info_struct(m_png) : nullptr)
    { }
    PngReader(const PngReader &) = delete;
    PngReader &operator=(const PngReader &) = delete;
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    // libpng leaves the next two functions by longjmp() when a file is damaged, so they have no
    // local objects to destroy.

    bool readInfo()
    {
        constexpr png_alloc_size_t largestChunk = 4 << 20;
        if (!m_info || setjmp(png_jmpbuf(m_png)))
            return false;
        png_set_read_fn(m_png, &m_rest, readBytes);
        // Text chunks can unpack to gigabytes: of the optional chunks only those of the colour
        // space are read.
        png_set_chunk_malloc_max(m_png, largestChunk);
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        constexpr png_byte colorChunks[] = "iCCP\0sRGB\0gAMA\0cHRM";
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_AS_DEFAULT, colorChunks, 4);
        png_read_info(m_png, m_info);
        m_isGray = (png_get_color_type(m_png, m_info) & PNG_COLOR_MASK_COLOR) == 0;
        png_set_expand(m_png);
        png_set_scale_16(m_png);
        png_set_gray_to_rgb(m_png);
        png_set_add_alpha(m_png, 0xFF, PNG_FILLER_AFTER);
        png_read_update_info(m_png, m_info);
        return true;
    }

    /// `row` has room for one row of red, green, blue and alpha.
    bool readPixels(AreaAverage *picture, uchar *row)
    {
        if (setjmp(png_jmpbuf(m_png)))
            return false;
        const png_uint_32 width = png_get_image_width(m_png, m_info);
        const png_uint_32 height = png_get_image_height(m_png, m_info);
        if (png_get_interlace_type(m_png, m_info) == PNG_INTERLACE_NONE) {
            for (png_uint_32 y = 0; y < height; ++y) {
                png_read_row(m_png, row, nullptr);
                picture->addRow(int(y), row, int(width));
            }
            return true;
        }
        // Each pass is a small picture of its own, which libpng would lay out in the whole one.
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass) {
            const auto columns = int(PNG_PASS_COLS(width, pass));
            const auto rows = int(PNG_PASS_ROWS(height, pass));
            for (int y = 0; columns > 0 && y < rows; ++y) {
                png_read_row(m_png, row, nullptr);
                picture->addRow(int(PNG_ROW_FROM_PASS_ROW(y, pass)), row, columns,
                                int(PNG_PASS_START_COL(pass)), int(PNG_PASS_COL_OFFSET(pass)));
            }
        }
        return true;
    }

    QColorSpace colorSpace() const
    {
        char *name = nullptr;
        int compression = 0;
        png_bytep profile = nullptr;
        png_uint_32 profileSize = 0;
        // A gray profile fits no picture in red, green and blue.
        if (!m_isGray
            && png_get_iCCP(m_png, m_info, &name, &compression, &profile, &profileSize) != 0) {
            return QColorSpace::fromIccProfile(
                QByteArray(reinterpret_cast<char *>(profile), qsizetype(profileSize)));
        }
        int intent = 0;
        if (png_get_sRGB(m_png, m_info, &intent) != 0)
            return QColorSpace::SRgb;
        double exponent = 0;
        if (png_get_gAMA(m_png, m_info, &exponent) == 0 || exponent <= 0)
            return {};
        const auto gamma = float(1 / exponent);
        double whiteX = 0;
        double whiteY = 0;
        double redX = 0;
        double redY = 0;
        double greenX = 0;
        double greenY = 0;
        double blueX = 0;
        double blueY = 0;
        if (m_isGray
            || png_get_cHRM(m_png, m_info, &whiteX, &whiteY, &redX, &redY, &greenX, &greenY, &blueX,
                            &blueY)
                == 0)
            return {QColorSpace::Primaries::SRgb, gamma};
        return {{whiteX, whiteY},
                {redX, redY},
                {greenX, greenY},
                {blueX, blueY},
                QColorSpace::TransferFunction::Gamma,
                gamma};
    }

private:
    QByteArrayView m_rest;
    png_structp m_png;
    png_infop m_info;
    bool m_isGray = false;
};

} // namespace

std::optional<ImageHeader> pngHeader(QByteArrayView png)
{
    const auto layout = pngLayout(png);
    if (!layout)
        return std::nullopt;
    return ImageHeader{.size = layout->size, .transformation = exifTransformation(layout->exif)};
}

QImage decodedPng(QByteArrayView png, QSize size)
{
    const auto layout = pngLayout(png);
    PngReader reader(png);
    if (!layout || !reader.readInfo())
        return {};
    AreaAverage picture(layout->size, size);
    QByteArray row(qsizetype(layout->size.width()) * 4, Qt::Uninitialized);
    if (!reader.readPixels(&picture, reinterpret_cast<uchar *>(row.data())))
        return {};
    QImage image = picture.image();
    image.setColorSpace(reader.colorSpace());
    return image;
}
