#pragma once

#include "DecodedImage.h"

#include <QByteArray>
#include <QQuickItem>

/// The picture in some bytes, as large as fits the item, centred, whole and in its own proportions.
/// The renderer scales it, so that it follows a window being resized at no cost.
class FittedPicture : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QByteArray bytes READ bytes WRITE setBytes NOTIFY bytesChanged)
    /// Where the picture is, in the item's coordinates; empty until it is decoded and for bytes
    /// that are no image.
    Q_PROPERTY(QRectF pictureRect READ pictureRect NOTIFY pictureRectChanged)

public:
    explicit FittedPicture(QQuickItem *parent = nullptr);

    QByteArray bytes() const { return m_decoded.bytes(); }
    void setBytes(const QByteArray &bytes);
    QRectF pictureRect() const;

Q_SIGNALS:
    void bytesChanged();
    void pictureRectChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    DecodedImage m_decoded;
    bool m_imageChanged = false;
};
