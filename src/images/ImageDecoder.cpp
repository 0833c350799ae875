#include "ImageDecoder.h"

#include "DecodingCost.h"
#include "ImageFormat.h"
#include "ImageLimits.h"
#include "ImageShrinking.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QTransform>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <mutex>

namespace {

/// Qt's allocation limit assumes 32 bits for every pixel, even of pictures with one bit, and holds
/// for the whole process. It is raised once so that it never applies; decodeImage() has its own
/// limits.
void raiseQtLimit()
{
    constexpr qint64 bytesPerMegabyte = 1 << 20;
    static std::once_flag once;
    std::call_once(once, [] {
        QImageReader::setAllocationLimit(int(maximumImagePixels * 4 / bytesPerMegabyte) + 1);
    });
}

/// `size` reduced by one factor until its longest side is `longestSide`.
QSize fitted(QSize size, int longestSide)
{
    const double factor
        = std::min(double(longestSide) / std::max(size.width(), size.height()), 1.0);
    return {std::max(1, qRound(size.width() * factor)),
            std::max(1, qRound(size.height() * factor))};
}

/// The size the reader announces. A BMP whose rows are stored from top to bottom announces a
/// negative height.
QSize announcedSize(const QImageReader &reader)
{
    const QSize size = reader.size();
    constexpr int lowest = std::numeric_limits<int>::min();
    return {size.width(), size.height() == lowest ? 0 : std::abs(size.height())};
}

/// `image` after `transformation`. QImageReader would transform it before it is scaled down, and
/// need the memory of the large picture twice.
QImage transformed(const QImage &image, QImageIOHandler::Transformations transformation)
{
    QImage mirrored = image.mirrored(transformation.testFlag(QImageIOHandler::TransformationMirror),
                                     transformation.testFlag(QImageIOHandler::TransformationFlip));
    if (!transformation.testFlag(QImageIOHandler::TransformationRotate90))
        return mirrored;
    constexpr double quarterTurn = 90;
    return mirrored.transformed(QTransform().rotate(quarterTurn));
}

} // namespace

std::optional<QImage> decodeImage(const QByteArray &bytes, int longestSide)
{
    const ImageFormat *format = imageFormat(bytes);
    if (!format || bytes.size() > maximumImageBytes)
        return std::nullopt;

    raiseQtLimit();
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    // Only the named reader sees the bytes: without a name Qt would try every installed one.
    QImageReader reader(&buffer, format->reader);
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);

    const QSize size = announcedSize(reader);
    if (size.isEmpty() || qint64(size.width()) * size.height() > maximumImagePixels)
        return std::nullopt;
    const auto cost = format->cost(bytes, size);
    if (!cost || cost->bytes > maximumDecodingBytes || cost->work > maximumDecodingWork)
        return std::nullopt;

    const QSize target = fitted(size, longestSide);
    const auto transformation = reader.transformation();
    if (cost->scalesWhileReading && target != size)
        reader.setScaledSize(target);
    QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    if (image.width() > target.width() || image.height() > target.height())
        image = shrunk(image, target);
    image = transformed(image, transformation);
    if (image.colorSpace().isValid())
        image.convertToColorSpace(QColorSpace::SRgb);
    return image;
}
