#include "ContinuousRectangle.h"

#include "ContinuousCorners.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace {

/// One axis of the image and of the item, cut in three. The outer parts are as long in both; in the
/// image the middle part has a spare pixel on either side. All cuts lie on whole device pixels: at
/// fractions of one the software renderer leaves a pixel out between two parts, or paints it twice.
struct Cut
{
    std::array<double, 4> image; ///< device pixels
    std::array<double, 4> item; ///< logical pixels
};

Cut cut(int imagePixels, double itemLength, double ratio)
{
    const double middle = std::floor(imagePixels / 2.0);
    const double first = middle / ratio;
    const double last = (imagePixels - middle - 1) / ratio;
    const double length = std::round(itemLength * ratio) / ratio;
    return {.image = {0, middle, middle + 1, static_cast<double>(imagePixels)},
            .item = {0, first, std::max(length - last, first), length}};
}

/// The nine parts, in rows, and the one texture they share.
class NinePartNode : public QSGNode
{
public:
    explicit NinePartNode(QQuickWindow *window)
    {
        for (auto &part : m_parts) {
            part = window->createImageNode();
            part->setFiltering(QSGTexture::Nearest);
            appendChildNode(part);
        }
    }

    void setTexture(QSGTexture *texture)
    {
        for (auto *part : m_parts)
            part->setTexture(texture);
        m_texture.reset(texture);
    }

    void place(const Cut &horizontal, const Cut &vertical)
    {
        const auto span = [](const std::array<double, 4> &x, size_t column,
                             const std::array<double, 4> &y, size_t row) {
            return QRectF(QPointF(x.at(column), y.at(row)),
                          QPointF(x.at(column + 1), y.at(row + 1)));
        };
        for (size_t i = 0; i < m_parts.size(); ++i) {
            const size_t column = i % 3;
            const size_t row = i / 3;
            m_parts.at(i)->setSourceRect(span(horizontal.image, column, vertical.image, row));
            m_parts.at(i)->setRect(span(horizontal.item, column, vertical.item, row));
        }
    }

private:
    std::unique_ptr<QSGTexture> m_texture;
    std::array<QSGImageNode *, 9> m_parts{};
};

} // namespace

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
    QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRoundedPath({{}, size}, m_radius), m_color);
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
        const QRectF middleOfLine = QRectF({}, size).adjusted(inset, inset, -inset, -inset);
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
        parts->setTexture(
            window()->createTextureFromImage(m_image, QQuickWindow::TextureCanUseAtlas));
        m_imageChanged = false;
    }
    const double ratio = m_image.devicePixelRatio();
    parts->place(cut(m_image.width(), width(), ratio), cut(m_image.height(), height(), ratio));
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
