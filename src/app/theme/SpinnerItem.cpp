#include "SpinnerItem.h"

#include <QPainter>
#include <QQuickWindow>
#include <QTimerEvent>

namespace {

constexpr int spokes = 8;
constexpr int stepInterval = 100; // milliseconds

} // namespace

SpinnerItem::SpinnerItem(QQuickItem *parent)
    : ImageItem(parent)
{
    setImplicitSize(m_diameter, m_diameter);
    updateRunning();
}

void SpinnerItem::setDiameter(int points)
{
    if (m_diameter == points)
        return;
    m_diameter = points;
    setImplicitSize(points, points);
    Q_EMIT sizeChanged();
}

void SpinnerItem::setColor(QColor color)
{
    if (m_color == color)
        return;
    m_color = color;
    repaint();
    Q_EMIT colorChanged();
}

void SpinnerItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    ImageItem::itemChange(change, value);
    if (change == ItemVisibleHasChanged || change == ItemSceneChange)
        updateRunning();
}

void SpinnerItem::updateRunning()
{
    if (!window() || !isVisible())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(stepInterval, this);
}

void SpinnerItem::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId())
        return;
    m_step = (m_step + 1) % spokes;
    repaint();
}

QImage SpinnerItem::paintedImage(QSizeF size, double ratio) const
{
    QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(image.width() / 2.0, image.height() / 2.0);
    // In units of the radius.
    painter.scale(image.width() / 2.0, image.height() / 2.0);
    constexpr double innerEnd = 0.45;
    constexpr double thickness = 0.2;
    constexpr double faintest = 0.2;
    for (int i = 0; i < spokes; ++i) {
        // The spoke at the step is the darkest, the one it will reach last the faintest.
        const int age = (m_step - i + spokes) % spokes;
        QColor color = m_color;
        color.setAlphaF(
            static_cast<float>(color.alphaF() * (1 - (1 - faintest) * age / (spokes - 1))));
        painter.save();
        painter.rotate(360.0 * i / spokes);
        painter.setBrush(color);
        painter.drawRoundedRect(QRectF(-thickness / 2, -1, thickness, 1 - innerEnd), thickness / 2,
                                thickness / 2);
        painter.restore();
    }
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}
