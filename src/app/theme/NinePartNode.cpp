#include "NinePartNode.h"

#include <QQuickWindow>
#include <QRectF>
#include <QSGTexture>

#include <algorithm>
#include <cmath>

namespace {

/// One axis of the image and of what it is stretched to, cut in three. The outer parts are as long
/// in both; in the image the middle part has a spare pixel on either side. All cuts lie on whole
/// device pixels: at fractions of one the software renderer leaves a pixel out between two parts,
/// or paints it twice.
struct Cut
{
    std::array<double, 4> image; ///< device pixels
    std::array<double, 4> place; ///< logical pixels
};

Cut cut(int imagePixels, double corner, double length, double ratio)
{
    const double middle = std::floor(imagePixels / 2.0);
    const double first = middle / ratio;
    const double last = (imagePixels - middle - 1) / ratio;
    const double whole = nearestPixel(length, ratio) / ratio;
    return {.image = {0, middle, middle + 1, static_cast<double>(imagePixels)},
            .place
            = {corner, corner + first, corner + std::max(whole - last, first), corner + whole}};
}

} // namespace

NinePartNode::NinePartNode(QQuickWindow *window)
{
    for (auto &part : m_parts) {
        part = window->createImageNode();
        part->setFiltering(QSGTexture::Nearest);
        appendChildNode(part);
    }
}

void NinePartNode::setImage(const QImage &image, QQuickWindow *window)
{
    auto *texture = window->createTextureFromImage(image, QQuickWindow::TextureCanUseAtlas);
    for (auto *part : m_parts)
        part->setTexture(texture);
    m_texture.reset(texture);
    m_imageSize = image.size();
    m_ratio = image.devicePixelRatio();
    setRatio(m_ratio);
}

void NinePartNode::place(QSizeF size, QPointF corner)
{
    const Cut horizontal = cut(m_imageSize.width(), corner.x(), size.width(), m_ratio);
    const Cut vertical = cut(m_imageSize.height(), corner.y(), size.height(), m_ratio);
    const auto span = [](const std::array<double, 4> &x, size_t column,
                         const std::array<double, 4> &y, size_t row) {
        return QRectF(QPointF(x.at(column), y.at(row)), QPointF(x.at(column + 1), y.at(row + 1)));
    };
    for (size_t i = 0; i < m_parts.size(); ++i) {
        const size_t column = i % 3;
        const size_t row = i / 3;
        m_parts.at(i)->setSourceRect(span(horizontal.image, column, vertical.image, row));
        m_parts.at(i)->setRect(span(horizontal.place, column, vertical.place, row));
    }
}
