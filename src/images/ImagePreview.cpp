#include "ImagePreview.h"

#include "ImageDecoder.h"
#include "ImageLimits.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>

std::optional<QByteArray> makePreviewData(const QByteArray &bytes)
{
    constexpr int quality = 68;
    const auto picture = decodeImage(bytes, maximumPreviewSide);
    if (!picture)
        return std::nullopt;

    // A new image also lacks the texts and profiles that the writer would copy.
    QImage opaque(picture->size(), QImage::Format_RGB32);
    if (opaque.isNull())
        return std::nullopt;
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(QPoint(0, 0), *picture);

    QBuffer jpeg;
    jpeg.open(QIODevice::WriteOnly);
    QImageWriter writer(&jpeg, "jpeg");
    writer.setQuality(quality);
    if (!writer.write(opaque))
        return std::nullopt;
    return jpeg.data();
}
