#include "SoftShadow.h"

#include "ContinuousCorners.h"
#include "NinePartNode.h"

#include <QPainter>
#include <QQuickWindow>

#include <cmath>
#include <vector>

namespace {

/// Replaces each value of a row or column by the mean of `radius` values to either side; beyond the
/// ends there is nothing.
void average(std::vector<int> &values, int radius)
{
    const std::vector<int> before = values;
    const auto count = static_cast<int>(values.size());
    int sum = 0;
    for (int i = -radius; i < count; ++i) {
        if (i + radius < count)
            sum += before[i + radius];
        if (i - radius - 1 >= 0)
            sum -= before[i - radius - 1];
        if (i >= 0)
            values[i] = sum / (2 * radius + 1);
    }
}

/// Blurs an 8-bit image as a bell curve would that ends `reach` pixels away: three plain averages
/// one after the other come close to one.
void blur(QImage &mask, int reach)
{
    constexpr int passes = 3;
    constexpr int precision = 256;
    const int radius = reach / passes;
    std::vector<int> values;
    const auto blurLine = [&values, radius](uchar *first, qsizetype step, int length) {
        values.resize(length);
        for (int i = 0; i < length; ++i)
            values[i] = first[i * step] * precision;
        for (int pass = 0; pass < passes; ++pass)
            average(values, radius);
        for (int i = 0; i < length; ++i)
            first[i * step] = static_cast<uchar>(values[i] / precision);
    };
    for (int y = 0; y < mask.height(); ++y)
        blurLine(mask.scanLine(y), 1, mask.width());
    for (int x = 0; x < mask.width(); ++x)
        blurLine(mask.bits() + x, mask.bytesPerLine(), mask.height());
}

} // namespace

SoftShadow::SoftShadow(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &SoftShadow::shapeChanged, this, &QQuickItem::polish);
}

void SoftShadow::updatePolish()
{
    if (!window())
        return;
    // Along a straight edge a shadow is the same everywhere, so a small caster's stretches.
    const double corners
        = 2 * std::ceil(continuousCornerReach() * m_radius + m_spread + m_drop) + 3;
    const QSizeF caster = size().boundedTo({corners, corners});
    m_image = caster.isEmpty() ? QImage() : paint(caster, window()->effectiveDevicePixelRatio());
    m_imageChanged = true;
    update();
}

QImage SoftShadow::paint(QSizeF casterSize, double ratio) const
{
    const auto pixels
        = [ratio](double points) { return static_cast<int>(std::lround(points * ratio)); };
    const int margin = pixels(m_spread);
    const int drop = pixels(m_drop);
    const QRect caster(margin, margin, pixels(casterSize.width()), pixels(casterSize.height()));
    const QPainterPath shape = continuousRoundedPath(caster, m_radius * ratio);

    QImage mask(caster.size() + QSize(2 * margin, 2 * margin + drop), QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape.translated(0, drop), Qt::black);
    painter.end();
    blur(mask, margin);

    QImage image(mask.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(m_color);
    painter.begin(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, mask);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(shape, Qt::black);
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}

QSGNode *SoftShadow::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
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
    const double ratio = m_image.devicePixelRatio();
    const double margin = std::round(m_spread * ratio) / ratio;
    const double drop = std::round(m_drop * ratio) / ratio;
    parts->place(size() + QSizeF(2 * margin, 2 * margin + drop), {-margin, -margin});
    return parts;
}

void SoftShadow::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        polish();
}

void SoftShadow::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        polish();
}
