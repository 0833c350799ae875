#pragma once

#include <QImage>
#include <QQuickItem>

/// An item that shows an image painted for it, pixel for pixel on the screen it is on: sharp at
/// any scale factor and the same on every renderer.
class ImageItem : public QQuickItem
{
    Q_OBJECT

public:
    explicit ImageItem(QQuickItem *parent = nullptr);

protected:
    /// The image for an item of `size` in logical pixels, on a screen with `ratio` pixels to each.
    /// It has that ratio and is shown in its own size, in whole pixels. Called when something
    /// changed, on the thread of the item.
    virtual QImage paintedImage(QSizeF size, double ratio) const = 0;

    /// Schedules the image to be painted again before the next frame.
    void repaint();

    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    QImage m_image;
    bool m_imageChanged = false;
};
