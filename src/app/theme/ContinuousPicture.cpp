#include "ContinuousPicture.h"

#include "ContinuousCorners.h"

#include <QPainter>

void ContinuousPicture::setImage(const QImage &image)
{
    if (m_picture == image)
        return;
    m_picture = image;
    repaint();
    Q_EMIT imageChanged();
}

void ContinuousPicture::setRadius(double radius)
{
    if (m_radius == radius)
        return;
    m_radius = radius;
    repaint();
    Q_EMIT radiusChanged();
}

void ContinuousPicture::setFillMode(FillMode mode)
{
    if (m_fillMode == mode)
        return;
    m_fillMode = mode;
    repaint();
    Q_EMIT fillModeChanged();
}

QImage ContinuousPicture::paintedImage(QSizeF size, double ratio) const
{
    if (m_picture.isNull())
        return {};
    const QSize pixels = (size * ratio).toSize();
    const auto aspect = m_fillMode == Crop ? Qt::KeepAspectRatioByExpanding : Qt::IgnoreAspectRatio;
    const QImage scaled = m_picture.scaled(pixels, aspect, Qt::SmoothTransformation);
    // On a whole pixel, so that it stays as sharp as it was scaled.
    const QPoint corner((pixels.width() - scaled.width()) / 2,
                        (pixels.height() - scaled.height()) / 2);
    QBrush picture(scaled);
    picture.setTransform(QTransform::fromTranslate(corner.x(), corner.y()));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedPath(image.rect(), m_radius * ratio), picture);
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}
