#include "LogoItem.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace {

QByteArray logoDrawing()
{
    QFile file(u":/brand/logo.svg"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

LogoItem::LogoItem(QQuickItem *parent)
    : ImageItem(parent)
{
    static const QSizeF drawnSize = QSvgRenderer(logoDrawing()).viewBoxF().size();
    setImplicitSize(drawnSize.width(), drawnSize.height());
}

void LogoItem::setWordColor(QColor color)
{
    if (m_wordColor == color)
        return;
    m_wordColor = color;
    repaint();
    Q_EMIT wordColorChanged();
}

QImage LogoItem::paintedImage(QSizeF size, double ratio) const
{
    QSvgRenderer renderer(logoDrawing());
    const QSize pixels = (size * ratio).toSize();
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const auto paint = [&renderer, &painter, pixels](const QString &part) {
        painter.save();
        painter.scale(pixels.width() / renderer.viewBoxF().width(),
                      pixels.height() / renderer.viewBoxF().height());
        renderer.render(&painter, part, renderer.boundsOnElement(part));
        painter.restore();
    };
    paint(u"word"_s);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), m_wordColor);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paint(u"mark"_s);
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}
