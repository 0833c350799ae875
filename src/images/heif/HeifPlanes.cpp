#include "HeifPlanes.h"

#include <QImageIOHandler>
#include <QList>

#include <algorithm>
#include <array>
#include <cstring>
#include <libheif/heif.h>

namespace {

constexpr int maximumSample = 255;

/// One plane's samples, 8 bits each.
QImage shrunkPlane(const heif_image *picture, heif_channel channel, QSize size)
{
    int stride = 0;
    const quint8 *samples = heif_image_get_plane_readonly(picture, channel, &stride);
    const qint64 width = heif_image_get_width(picture, channel);
    const qint64 height = heif_image_get_height(picture, channel);
    const int bits = heif_image_get_bits_per_pixel_range(picture, channel);
    QImage plane;
    if (!samples || width <= 0 || height <= 0 || bits < 8 || bits > 16
        || !QImageIOHandler::allocateImage(size, QImage::Format_Grayscale8, &plane))
        return {};

    const bool isWide = bits > 8;
    QList<quint64> sums(size.width());
    for (int y = 0; y < size.height(); ++y) {
        const qint64 top = y * height / size.height();
        const qint64 bottom = std::max(top + 1, (y + 1) * height / size.height());
        std::fill(sums.begin(), sums.end(), 0);
        for (qint64 row = top; row < bottom; ++row) {
            const quint8 *line = samples + row * stride;
            quint64 *sum = sums.data();
            for (int x = 0; x < size.width(); ++x, ++sum) {
                const qint64 left = x * width / size.width();
                const qint64 right = std::max(left + 1, (x + 1) * width / size.width());
                for (qint64 i = left; i < right; ++i) {
                    quint16 sample = line[i];
                    if (isWide)
                        std::memcpy(&sample, line + i * 2, sizeof(sample));
                    *sum += sample;
                }
            }
        }
        uchar *out = plane.scanLine(y);
        for (int x = 0; x < size.width(); ++x) {
            const qint64 left = x * width / size.width();
            const qint64 right = std::max(left + 1, (x + 1) * width / size.width());
            const auto count = quint64((right - left) * (bottom - top)) << (bits - 8);
            out[x] = uchar(std::min<quint64>((sums[x] + count / 2) / count, maximumSample));
        }
    }
    return plane;
}

/// How brightness and the two colour differences make red, green and blue: the weights of red and
/// blue in brightness, as ITU-T H.273 lists them by number, and the range of the samples.
struct ColorMatrix
{
    double red = 0.299;
    double blue = 0.114;
    bool isFullRange = true;
};

ColorMatrix colorMatrix(const heif_image *picture)
{
    heif_color_profile_nclx *profile = nullptr;
    if (heif_image_get_nclx_color_profile(picture, &profile).code != heif_error_Ok)
        return {};
    ColorMatrix matrix{.isFullRange = profile->full_range_flag != 0};
    if (profile->matrix_coefficients == heif_matrix_coefficients_ITU_R_BT_709_5) {
        matrix.red = 0.2126;
        matrix.blue = 0.0722;
    } else if (profile->matrix_coefficients
               == heif_matrix_coefficients_ITU_R_BT_2020_2_non_constant_luminance) {
        matrix.red = 0.2627;
        matrix.blue = 0.0593;
    }
    heif_nclx_color_profile_free(profile);
    return matrix;
}

int clamped(double sample)
{
    return std::clamp(qRound(sample), 0, maximumSample);
}

QRgb pixel(const ColorMatrix &matrix, int brightness, int blueDifference, int redDifference)
{
    constexpr double middle = 128;
    constexpr double foot = 16;
    const double y = matrix.isFullRange ? brightness : (brightness - foot) * 255 / 219;
    const double reach = matrix.isFullRange ? 1 : 255.0 / 224;
    const double blue = y + 2 * (1 - matrix.blue) * (blueDifference - middle) * reach;
    const double red = y + 2 * (1 - matrix.red) * (redDifference - middle) * reach;
    const double green
        = (y - matrix.red * red - matrix.blue * blue) / (1 - matrix.red - matrix.blue);
    return qRgb(clamped(red), clamped(green), clamped(blue));
}

} // namespace

QImage imageFromPlanes(const heif_image *picture, QSize size)
{
    const heif_colorspace colors = heif_image_get_colorspace(picture);
    std::array<heif_channel, 3> channels{heif_channel_Y, heif_channel_Cb, heif_channel_Cr};
    if (colors == heif_colorspace_RGB)
        channels = {heif_channel_R, heif_channel_G, heif_channel_B};
    else if (colors == heif_colorspace_monochrome)
        channels = {heif_channel_Y, heif_channel_Y, heif_channel_Y};

    std::array<QImage, 3> planes;
    for (int i = 0; i < 3; ++i)
        planes[i] = shrunkPlane(picture, channels[i], size);
    const bool hasAlpha = heif_image_has_channel(picture, heif_channel_Alpha) != 0;
    const QImage alpha = hasAlpha ? shrunkPlane(picture, heif_channel_Alpha, size) : QImage();
    QImage image;
    if (std::any_of(planes.begin(), planes.end(), [](const QImage &p) { return p.isNull(); })
        || hasAlpha == alpha.isNull()
        || !QImageIOHandler::allocateImage(
            size, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32, &image))
        return {};

    const ColorMatrix matrix = colorMatrix(picture);
    for (int y = 0; y < size.height(); ++y) {
        auto *out = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int first = planes[0].constScanLine(y)[x];
            const int second = planes[1].constScanLine(y)[x];
            const int third = planes[2].constScanLine(y)[x];
            const QRgb opaque = colors == heif_colorspace_YCbCr
                ? pixel(matrix, first, second, third)
                : qRgb(first, second, third);
            out[x]
                = hasAlpha ? (opaque & RGB_MASK) | QRgb(alpha.constScanLine(y)[x]) << 24 : opaque;
        }
    }
    return image;
}
