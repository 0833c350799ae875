#include "HeifHandler.h"

#include "HeifPlanes.h"
#include "HeifRotation.h"
#include "ImageLimits.h"

#include <QColorSpace>
#include <QIODevice>
#include <QImage>
#include <QVariant>

#include <algorithm>
#include <array>

namespace {

QColorSpace colorSpace(const heif_image_handle *handle)
{
    const auto size = qsizetype(heif_image_handle_get_raw_color_profile_size(handle));
    if (size <= 0 || size > maximumImageBytes)
        return {};
    QByteArray profile(size, Qt::Uninitialized);
    if (heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return QColorSpace::fromIccProfile(profile);
}

/// The most samples that a pixel of any coded picture in the file has, by the pictures' decoder
/// settings.
double samplesPerPixel(const QByteArray &heic)
{
    constexpr qsizetype chromaFormatOffset = 20; // From the name of the box
    constexpr std::array<double, 4> samplesOfFormat{1, 1.5, 2, 3};
    double most = 1;
    qsizetype at = 0;
    while ((at = heic.indexOf("hvcC", at)) >= 0 && at + chromaFormatOffset < heic.size()) {
        most = std::max(most, samplesOfFormat[quint8(heic[at + chromaFormatOffset]) & 3U]);
        ++at;
    }
    return most;
}

} // namespace

bool HeifHandler::canRead() const
{
    return m_handle || !device()->atEnd();
}

bool HeifHandler::open()
{
    if (m_handle)
        return true;
    m_bytes = device()->read(maximumImageBytes);
    m_context.reset(heif_context_alloc());
    if (heif_context_read_from_memory_without_copy(m_context.get(), m_bytes.constData(),
                                                   size_t(m_bytes.size()), nullptr)
            .code
        != heif_error_Ok)
        return false;
    heif_image_handle *handle = nullptr;
    if (heif_context_get_primary_image_handle(m_context.get(), &handle).code != heif_error_Ok)
        return false;
    m_handle.reset(handle);
    m_rotation = heifRotation(m_bytes);
    return true;
}

QSize HeifHandler::size() const
{
    const heif_image_handle *handle = m_handle.get();
    if (m_rotation)
        return {heif_image_handle_get_ispe_width(handle),
                heif_image_handle_get_ispe_height(handle)};
    return {heif_image_handle_get_width(handle), heif_image_handle_get_height(handle)};
}

qint64 HeifHandler::decodingBytes() const
{
    // A picture of tiles is combined in red, green and blue while the tiles are in memory; one
    // without tiles is in memory twice, in the decoder and in libheif. Measured with one large
    // tile.
    constexpr double samplesOfTiles = 4.5;
    double samples = std::max(samplesOfTiles, 2 * samplesPerPixel(m_bytes));
    if (heif_image_handle_has_alpha_channel(m_handle.get()) != 0)
        samples += 1;
    const int copies = m_rotation ? 1 : 2;
    const int bytesPerSample
        = heif_image_handle_get_luma_bits_per_pixel(m_handle.get()) > 8 ? 2 : 1;
    return qint64(double(size().width()) * size().height() * samples) * bytesPerSample * copies;
}

HeifHandler::Picture HeifHandler::decode() const
{
    using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;
    const Options options(heif_decoding_options_alloc());
    options->ignore_transformations = m_rotation ? 1 : 0;
    // The tiles may be laid out on a larger picture than the file announces. libheif rejects
    // pictures that reach the limit, hence one more.
    heif_context_set_maximum_image_size_limit(m_context.get(),
                                              std::max(size().width(), size().height()) + 1);
    heif_image *picture = nullptr;
    const heif_error error = heif_decode_image(m_handle.get(), &picture, heif_colorspace_undefined,
                                               heif_chroma_undefined, options.get());
    return Picture(error.code == heif_error_Ok ? picture : nullptr);
}

bool HeifHandler::read(QImage *image)
{
    if (!open() || size().isEmpty() || decodingBytes() > maximumDecodingBytes)
        return false;
    const Picture picture = decode();
    if (!picture)
        return false;
    *image = imageFromPlanes(picture.get(), m_scaledSize.isEmpty() ? size() : m_scaledSize);
    const QColorSpace profile = colorSpace(m_handle.get());
    if (profile.isValid())
        image->setColorSpace(profile);
    return !image->isNull();
}

bool HeifHandler::supportsOption(ImageOption option) const
{
    return option == Size || option == ScaledSize || option == ImageTransformation;
}

QVariant HeifHandler::option(ImageOption option) const
{
    if (option == ScaledSize)
        return m_scaledSize;
    // These two options need the file's header, which is read into members although option() is
    // const.
    if (!const_cast<HeifHandler *>(this)->open())
        return {};
    if (option == Size)
        return size();
    if (option == ImageTransformation) {
        constexpr std::array<Transformation, 4> transformations{
            TransformationNone, TransformationRotate270, TransformationRotate180,
            TransformationRotate90};
        return int(transformations[m_rotation.value_or(0)]);
    }
    return {};
}

void HeifHandler::setOption(ImageOption option, const QVariant &value)
{
    if (option == ScaledSize)
        m_scaledSize = value.toSize();
}
