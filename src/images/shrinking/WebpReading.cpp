#include "WebpReading.h"

#include "AreaAverage.h"
#include "ExifOrientation.h"

#include <QColorSpace>
#include <QRect>

#include <algorithm>
#include <memory>
#include <webp/decode.h>
#include <webp/demux.h>

namespace {

constexpr int channels = 4;

struct DeleteDemuxer
{
    void operator()(WebPDemuxer *demuxer) const { WebPDemuxDelete(demuxer); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, DeleteDemuxer>;

WebPData data(QByteArrayView bytes)
{
    return {.bytes = reinterpret_cast<const uint8_t *>(bytes.data()), .size = size_t(bytes.size())};
}

Demuxer demuxer(QByteArrayView webp)
{
    const WebPData bytes = data(webp);
    return Demuxer(WebPDemux(&bytes));
}

QSize canvasSize(const Demuxer &file)
{
    return {int(WebPDemuxGetI(file.get(), WEBP_FF_CANVAS_WIDTH)),
            int(WebPDemuxGetI(file.get(), WEBP_FF_CANVAS_HEIGHT))};
}

/// What the first chunk of that type holds: a part of the file's bytes.
QByteArrayView chunk(const Demuxer &file, const char *type)
{
    WebPChunkIterator chunks{};
    QByteArrayView content;
    if (WebPDemuxGetChunk(file.get(), type, 1, &chunks) != 0)
        content = {chunks.chunk.bytes, qsizetype(chunks.chunk.size)};
    WebPDemuxReleaseChunkIterator(&chunks);
    return content;
}

struct Frame
{
    WebPData bytes{};
    QRect rect;
};

std::optional<Frame> firstFrame(const Demuxer &file)
{
    WebPIterator frames{};
    std::optional<Frame> frame;
    if (WebPDemuxGetFrame(file.get(), 1, &frames) != 0)
        frame = {.bytes = frames.fragment,
                 .rect = QRect(frames.x_offset, frames.y_offset, frames.width, frames.height)};
    WebPDemuxReleaseIterator(&frames);
    return frame;
}

bool decode(WebPDecoderConfig *config, const WebPData &bytes, uchar *pixels, qsizetype bytesPerLine,
            int height)
{
    config->output.is_external_memory = 1;
    config->output.u.RGBA = {
        .rgba = pixels, .stride = int(bytesPerLine), .size = size_t(bytesPerLine) * size_t(height)};
    const bool isDecoded = WebPDecode(bytes.bytes, bytes.size, config) == VP8_STATUS_OK;
    WebPFreeDecBuffer(&config->output);
    return isDecoded;
}

/// Shrunk by libwebp while it decodes.
QImage shrunkWhileDecoding(const Frame &frame, QSize canvas, QSize size)
{
    QImage image;
    if (!QImageIOHandler::allocateImage(size, QImage::Format_RGBA8888_Premultiplied, &image))
        return {};
    image.fill(Qt::transparent);
    const auto scaled = [](int position, int from, int to) {
        return int((qint64(position) * to + from / 2) / from);
    };
    const int left
        = std::min(scaled(frame.rect.x(), canvas.width(), size.width()), size.width() - 1);
    const int top
        = std::min(scaled(frame.rect.y(), canvas.height(), size.height()), size.height() - 1);
    const int width = std::clamp(scaled(frame.rect.width(), canvas.width(), size.width()), 1,
                                 size.width() - left);
    const int height = std::clamp(scaled(frame.rect.height(), canvas.height(), size.height()), 1,
                                  size.height() - top);
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0)
        return {};
    config.options.use_scaling = 1;
    config.options.scaled_width = width;
    config.options.scaled_height = height;
    config.output.colorspace = MODE_rgbA;
    const bool isDecoded
        = decode(&config, frame.bytes, image.scanLine(top) + qsizetype(left) * channels,
                 image.bytesPerLine(), height);
    return isDecoded ? image : QImage();
}

/// Decoded whole, then shrunk.
QImage shrunkAfterDecoding(const Frame &frame, QSize canvas, QSize size)
{
    const QSize frameSize = frame.rect.size();
    QImage whole;
    WebPDecoderConfig config;
    if (!QImageIOHandler::allocateImage(frameSize, QImage::Format_RGBA8888, &whole)
        || WebPInitDecoderConfig(&config) == 0)
        return {};
    config.output.colorspace = MODE_RGBA;
    if (!decode(&config, frame.bytes, whole.bits(), whole.bytesPerLine(), frameSize.height()))
        return {};
    AreaAverage average(canvas, size);
    for (int y = 0; y < frameSize.height(); ++y)
        average.addRow(frame.rect.y() + y, whole.constScanLine(y), frameSize.width(),
                       frame.rect.x());
    return average.image();
}

} // namespace

std::optional<ImageHeader> webpHeader(QByteArrayView webp)
{
    const Demuxer file = demuxer(webp);
    if (!file)
        return std::nullopt;
    return ImageHeader{.size = canvasSize(file),
                       .transformation = exifTransformation(chunk(file, "EXIF"))};
}

QImage decodedWebp(QByteArrayView webp, QSize size)
{
    const Demuxer file = demuxer(webp);
    const auto frame = file ? firstFrame(file) : std::nullopt;
    WebPBitstreamFeatures features;
    if (!frame
        || WebPGetFeatures(frame->bytes.bytes, frame->bytes.size, &features) != VP8_STATUS_OK)
        return {};
    // When libwebp scales a lossy picture down, it ignores transparency: colours of transparent
    // pixels would show.
    constexpr int lossless = 2;
    const bool isMixed = features.has_alpha != 0 && features.format != lossless;
    QImage image = isMixed ? shrunkAfterDecoding(*frame, canvasSize(file), size)
                           : shrunkWhileDecoding(*frame, canvasSize(file), size);
    const QByteArrayView profile = chunk(file, "ICCP");
    if (!profile.isEmpty())
        image.setColorSpace(QColorSpace::fromIccProfile(profile.toByteArray()));
    return image;
}
