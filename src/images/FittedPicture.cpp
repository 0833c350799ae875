#include "FittedPicture.h"

#include <QQuickWindow>
#include <QSGImageNode>

FittedPicture::FittedPicture(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(&m_decoded, &DecodedImage::imageChanged, this, [this] {
        m_imageChanged = true;
        update();
        Q_EMIT pictureRectChanged();
    });
}

void FittedPicture::setBytes(const QByteArray &bytes)
{
    if (m_decoded.bytes() == bytes)
        return;
    m_decoded.setBytes(bytes);
    Q_EMIT bytesChanged();
}

QRectF FittedPicture::pictureRect() const
{
    const QImage image = m_decoded.image();
    if (image.isNull() || size().isEmpty())
        return {};
    QRectF rect({}, image.size().toSizeF().scaled(size(), Qt::KeepAspectRatio));
    rect.moveCenter(boundingRect().center());
    return rect;
}

QSGNode *FittedPicture::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    const QRectF rect = pictureRect();
    if (rect.isEmpty()) {
        delete node;
        return nullptr;
    }
    auto *imageNode = static_cast<QSGImageNode *>(node);
    if (!imageNode) {
        imageNode = window()->createImageNode();
        imageNode->setOwnsTexture(true);
        imageNode->setFiltering(QSGTexture::Linear);
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        imageNode->setTexture(window()->createTextureFromImage(m_decoded.image()));
        m_imageChanged = false;
    }
    imageNode->setRect(rect);
    return imageNode;
}

void FittedPicture::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() == oldGeometry.size())
        return;
    update();
    Q_EMIT pictureRectChanged();
}
