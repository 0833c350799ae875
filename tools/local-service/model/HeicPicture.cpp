#include "HeicPicture.h"

#include <array>
#include <cstring>
#include <libheif/heif.h>
#include <memory>

bool isHeic(const QByteArray &bytes)
{
    constexpr qsizetype brandOffset = 8;
    constexpr qsizetype brandLength = 4;
    if (bytes.mid(4, 4) != "ftyp")
        return false;
    static constexpr std::array brands{"heic", "heix", "heim", "heis", "mif1"};
    const QByteArray brand = bytes.mid(brandOffset, brandLength);
    return std::find(brands.begin(), brands.end(), brand) != brands.end();
}

QImage heicPicture(const QByteArray &bytes, qint64 mostPixels)
{
    const std::unique_ptr<heif_context, decltype(&heif_context_free)> context(heif_context_alloc(),
                                                                              heif_context_free);
    // On each side; a file may announce one size and hold another.
    constexpr int longestSide = 32768;
    heif_context_set_maximum_image_size_limit(context.get(), longestSide);
    if (heif_context_read_from_memory_without_copy(context.get(), bytes.constData(),
                                                   static_cast<size_t>(bytes.size()), nullptr)
            .code
        != heif_error_Ok)
        return {};

    heif_image_handle *primary = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &primary).code != heif_error_Ok)
        return {};
    const std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle(
        primary, heif_image_handle_release);
    const qint64 pixels
        = qint64{heif_image_handle_get_width(primary)} * heif_image_handle_get_height(primary);
    if (pixels <= 0 || pixels > mostPixels)
        return {};

    // The library turns the picture upright as it decodes it.
    heif_image *decoded = nullptr;
    if (heif_decode_image(primary, &decoded, heif_colorspace_RGB, heif_chroma_interleaved_RGB,
                          nullptr)
            .code
        != heif_error_Ok)
        return {};
    const std::unique_ptr<heif_image, decltype(&heif_image_release)> picture(decoded,
                                                                             heif_image_release);
    int stride = 0;
    const uint8_t *plane
        = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
    const int width = heif_image_get_width(decoded, heif_channel_interleaved);
    const int height = heif_image_get_height(decoded, heif_channel_interleaved);
    if (!plane || width <= 0 || height <= 0 || qint64{width} * height > mostPixels)
        return {};
    return QImage(plane, width, height, stride, QImage::Format_RGB888).copy();
}
