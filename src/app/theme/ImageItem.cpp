#include "ImageItem.h"

#include <QQuickWindow>
#include <QSGImageNode>

ImageItem::ImageItem(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ImageItem::repaint()
{
    polish();
}

void ImageItem::updatePolish()
{
    if (!window())
        return;
    m_image
        = size().isEmpty() ? QImage() : paintedImage(size(), window()->effectiveDevicePixelRatio());
    m_imageChanged = true;
    update();
}

QSGNode *ImageItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    if (m_image.isNull()) {
        delete node;
        return nullptr;
    }
    auto *imageNode = static_cast<QSGImageNode *>(node);
    if (!imageNode) {
        imageNode = window()->createImageNode();
        imageNode->setOwnsTexture(true);
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        imageNode->setTexture(
            window()->createTextureFromImage(m_image, QQuickWindow::TextureCanUseAtlas));
        m_imageChanged = false;
    }
    imageNode->setRect(QRectF({}, m_image.deviceIndependentSize()));
    return imageNode;
}

void ImageItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        repaint();
}

void ImageItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        repaint();
}
