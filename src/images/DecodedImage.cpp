#include "DecodedImage.h"

#include "BackgroundWork.h"
#include "ImageDecoder.h"
#include "ImageLimits.h"

void DecodedImage::setBytes(const QByteArray &bytes)
{
    if (m_bytes == bytes)
        return;
    m_bytes = bytes;
    setImage({});
    if (bytes.isEmpty())
        return;
    runThenFinish(
        decodingPool(), this, [bytes] { return decodeImage(bytes, maximumPreviewSide); },
        [this, bytes](const std::optional<QImage> &image) {
            if (bytes == m_bytes)
                setImage(image.value_or(QImage()));
        });
}

void DecodedImage::setImage(const QImage &image)
{
    if (image.isNull() && m_image.isNull())
        return;
    m_image = image;
    Q_EMIT imageChanged();
}
