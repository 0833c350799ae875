#include "ModelImage.h"

#include "HeicPicture.h"
#include "RasterFormat.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <mutex>

using namespace Qt::StringLiterals;

// Above any camera of today. The memory for it is what Qt allows a reader at most.
static constexpr qint64 mostPixels = 120'000'000;
static constexpr int megabytesForReading = 480;
static constexpr int longestHeight = 1'000'000;

static QSize fitted(QSize size)
{
    const int longest = std::max(size.width(), size.height());
    return longest <= longestModelImageSide
        ? size
        : size.scaled(longestModelImageSide, longestModelImageSide, Qt::KeepAspectRatio)
              .expandedTo({1, 1});
}

static QImage readImage(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!isRasterFormat(reader.format()))
        return {};
    // A bitmap whose rows go from the top down announces a negative height.
    const QSize announced = reader.size();
    const QSize size(announced.width(), qAbs(qMax(announced.height(), -longestHeight)));
    if (size.isEmpty() || qint64{size.width()} * size.height() > mostPixels)
        return {};
    // The reader of JPEG shrinks while it reads.
    if (fitted(size) != size)
        reader.setScaledSize(fitted(size));
    reader.setAutoTransform(true);
    return reader.read();
}

// What is transparent becomes white: JPEG would make it black.
static QImage opaque(const QImage &image)
{
    QImage result(image.size(), QImage::Format_RGB32);
    result.fill(Qt::white);
    QPainter painter(&result);
    painter.drawImage(0, 0, image);
    return result;
}

std::optional<QByteArray> modelImage(const QByteArray &bytes)
{
    // One at a time: each may need as much memory as everything else together.
    static std::mutex reading;
    const std::scoped_lock lock(reading);
    QImageReader::setAllocationLimit(megabytesForReading);

    QImage image = isHeic(bytes) ? heicPicture(bytes, mostPixels) : readImage(bytes);
    if (image.isNull())
        return std::nullopt;
    const QSize size = fitted(image.size());
    if (size != image.size())
        image = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);

    constexpr int quality = 85;
    QByteArray jpeg;
    QBuffer output(&jpeg);
    output.open(QIODevice::WriteOnly);
    if (!opaque(image).save(&output, "JPEG", quality))
        return std::nullopt;
    return jpeg;
}
