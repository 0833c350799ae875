#include "ImageItem.h"

#include "WholePixelNode.h"

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
    auto *place = static_cast<WholePixelNode *>(node);
    if (!place) {
        place = new WholePixelNode;
        auto *created = window()->createImageNode();
        created->setOwnsTexture(true);
        place->appendChildNode(created);
        m_imageChanged = true;
    }
    place->setRatio(m_image.devicePixelRatio());
    auto *imageNode = static_cast<QSGImageNode *>(place->firstChild());
    if (m_imageChanged) {
        imageNode->setTexture(
            window()->createTextureFromImage(m_image, QQuickWindow::TextureCanUseAtlas));
        m_imageChanged = false;
    }
    imageNode->setRect(QRectF({}, m_image.deviceIndependentSize()));
    return place;
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
