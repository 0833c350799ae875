#pragma once

#include "ImageItem.h"

/// A picture clipped by continuous corners, stretched to the item's size: whoever lays it out keeps
/// its proportions.
class ContinuousPicture : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged)

public:
    using ImageItem::ImageItem;

    QImage image() const { return m_picture; }
    void setImage(const QImage &image);
    double radius() const { return m_radius; }
    void setRadius(double radius);

Q_SIGNALS:
    void imageChanged();
    void radiusChanged();

protected:
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    QImage m_picture;
    double m_radius = 0;
};
