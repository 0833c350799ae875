#pragma once

#include "ImageItem.h"

/// A picture clipped by continuous corners. It fills the item: stretched, when whoever lays it out
/// keeps its proportions, or with what stands over cropped evenly.
class ContinuousPicture : public ImageItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(FillMode fillMode READ fillMode WRITE setFillMode NOTIFY fillModeChanged)

public:
    enum FillMode { Stretch, Crop };
    Q_ENUM(FillMode)

    using ImageItem::ImageItem;

    QImage image() const { return m_picture; }
    void setImage(const QImage &image);
    double radius() const { return m_radius; }
    void setRadius(double radius);
    FillMode fillMode() const { return m_fillMode; }
    void setFillMode(FillMode mode);

Q_SIGNALS:
    void imageChanged();
    void radiusChanged();
    void fillModeChanged();

protected:
    QImage paintedImage(QSizeF size, double ratio) const override;

private:
    QImage m_picture;
    double m_radius = 0;
    FillMode m_fillMode = Stretch;
};
