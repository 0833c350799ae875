#include "ContinuousRectangle.h"

#include "ContinuousCorners.h"
#include "NinePartNode.h"

#include <QPainter>
#include <QQuickWindow>

#include <cmath>

ContinuousRectangle::ContinuousRectangle(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ContinuousRectangle::setRadius(double radius)
{
    if (m_radius == radius)
        return;
    m_radius = radius;
    polish();
    Q_EMIT radiusChanged();
}

void ContinuousRectangle::setColor(QColor color)
{
    if (m_color == color)
        return;
    m_color = color;
    polish();
    Q_EMIT colorChanged();
}

void ContinuousRectangle::setBorderColor(QColor color)
{
    if (m_borderColor == color)
        return;
    m_borderColor = color;
    polish();
    Q_EMIT borderColorChanged();
}

void ContinuousRectangle::setBorderWidth(double width)
{
    if (m_borderWidth == width)
        return;
    m_borderWidth = width;
    polish();
    Q_EMIT borderWidthChanged();
}

void ContinuousRectangle::setDashPattern(const QList<double> &pattern)
{
    if (m_dashPattern == pattern)
        return;
    m_dashPattern = pattern;
    polish();
    Q_EMIT dashPatternChanged();
}

void ContinuousRectangle::updatePolish()
{
    if (!window())
        return;
    const bool shows
        = isVisible() && (m_color.alpha() > 0 || (m_borderColor.alpha() > 0 && m_borderWidth > 0));
    QSizeF painted = size();
    if (m_dashPattern.isEmpty()) {
        const double corners
            = 2 * std::ceil(continuousCornerReach() * m_radius + m_borderWidth) + 3;
        painted = painted.boundedTo({corners, corners});
    }
    m_image = shows && !painted.isEmpty() ? paint(painted, window()->effectiveDevicePixelRatio())
                                          : QImage();
    m_imageChanged = true;
    update();
}

QImage ContinuousRectangle::paint(QSizeF size, double ratio) const
{
    const QSize pixels(static_cast<int>(nearestPixel(size.width(), ratio)),
                       static_cast<int>(nearestPixel(size.height(), ratio)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // In whole pixels, so that its edges are as sharp on the far sides as on the near ones.
    const QRectF edges({}, image.deviceIndependentSize());
    painter.fillPath(continuousRoundedPath(edges, m_radius), m_color);
    if (m_borderWidth > 0) {
        QPen pen(m_borderColor, m_borderWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
        pen.setMiterLimit(10);
        if (!m_dashPattern.isEmpty()) {
            QList<double> inPenWidths;
            for (const double length : m_dashPattern)
                inPenWidths.append(length / m_borderWidth);
            pen.setDashPattern(inPenWidths);
        }
        const double inset = m_borderWidth / 2;
        const QRectF middleOfLine = edges.adjusted(inset, inset, -inset, -inset);
        painter.strokePath(continuousRoundedPath(middleOfLine, m_radius - inset), pen);
    }
    return image;
}

QSGNode *ContinuousRectangle::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    if (m_image.isNull()) {
        delete node;
        return nullptr;
    }
    auto *parts = static_cast<NinePartNode *>(node);
    if (!parts) {
        parts = new NinePartNode(window());
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        parts->setImage(m_image, window());
        m_imageChanged = false;
    }
    parts->place(size());
    return parts;
}

void ContinuousRectangle::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        polish();
}

void ContinuousRectangle::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange
        || change == ItemVisibleHasChanged)
        polish();
}
