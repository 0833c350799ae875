#include "BytesPicture.h"

BytesPicture::BytesPicture(QQuickItem *parent)
    : ContinuousPicture(parent)
{
    connect(&m_decoded, &DecodedImage::imageChanged, this, [this] {
        const QImage picture = m_decoded.image();
        setImplicitSize(picture.width(), picture.height());
        setImage(picture);
    });
}

void BytesPicture::setBytes(const QByteArray &bytes)
{
    if (m_decoded.bytes() == bytes)
        return;
    m_decoded.setBytes(bytes);
    Q_EMIT bytesChanged();
}
