#include "TextTiles.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>

#include <cmath>
#include <limits>

namespace {
class TilesNode : public QSGTransformNode
{
public:
    std::map<int, QSGImageNode *> tiles;
};

int firstTile(VerticalBand band)
{
    return int(std::floor(band.top / TextTiles::tileHeight));
}

int endTile(VerticalBand band)
{
    return int(std::ceil(band.bottom / TextTiles::tileHeight));
}
} // namespace

void TextTiles::invalidate(VerticalBand band)
{
    const VerticalBand reached{band.top - bleed, band.bottom + bleed};
    const auto end = m_tiles.lower_bound(endTile(reached));
    for (auto tile = m_tiles.lower_bound(firstTile(reached)); tile != end; ++tile)
        tile->second.isStale = true;
}

void TextTiles::invalidateAll()
{
    for (auto &[index, tile] : m_tiles)
        tile.isStale = true;
}

bool TextTiles::update(VerticalBand band, QSizeF size, double ratio, const Paint &paint)
{
    // A strip keeps its width for as long as it lives, so that text that grows wider repaints.
    if (std::ceil(size.width()) != std::ceil(m_size.width()) || ratio != m_ratio)
        invalidateAll();
    m_size = size;
    m_ratio = ratio;

    const VerticalBand shown{std::max(band.top, 0.0), std::min(band.bottom, size.height())};
    const int first = firstTile(shown);
    const int end = shown.isEmpty() ? first : endTile(shown);
    bool differs
        = std::erase_if(m_tiles,
                        [&](const auto &tile) { return tile.first < first || tile.first >= end; })
        > 0;
    const QSize pixels = (QSizeF(std::ceil(size.width()) + 2 * bleed, tileHeight) * ratio).toSize();
    for (int index = first; index < end; ++index) {
        Tile &tile = m_tiles[index];
        if (!tile.isStale)
            continue;
        const double top = double(index) * tileHeight;
        tile = {.image = QImage(pixels, QImage::Format_ARGB32_Premultiplied), .isStale = false};
        tile.image.fill(Qt::transparent);
        tile.image.setDevicePixelRatio(ratio);
        QPainter painter(&tile.image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.translate(bleed, -top);
        paint(painter, {top - bleed, top + tileHeight + bleed});
        differs = true;
    }
    return differs;
}

bool TextTiles::setOffset(QPointF offset)
{
    if (m_offset == offset)
        return false;
    m_offset = offset;
    return true;
}

QSGNode *TextTiles::synchronize(QSGNode *node, QQuickWindow *window)
{
    auto *root = static_cast<TilesNode *>(node);
    if (!root) {
        root = new TilesNode;
        for (auto &[index, tile] : m_tiles)
            tile.isUploaded = false;
    }
    QMatrix4x4 shift;
    shift.translate(float(m_offset.x()), float(m_offset.y()));
    if (root->matrix() != shift)
        root->setMatrix(shift);
    std::erase_if(root->tiles, [this](const auto &entry) {
        const bool isGone = !m_tiles.contains(entry.first);
        if (isGone)
            delete entry.second;
        return isGone;
    });
    for (auto &[index, tile] : m_tiles) {
        if (tile.isUploaded)
            continue;
        QSGImageNode *&image = root->tiles[index];
        const bool isNew = !image;
        if (isNew) {
            image = window->createImageNode();
            image->setOwnsTexture(true);
            image->setFiltering(QSGTexture::Nearest);
        }
        image->setTexture(window->createTextureFromImage(tile.image));
        image->setRect(QRectF(QPointF(-bleed, double(index) * tileHeight),
                              tile.image.deviceIndependentSize()));
        // A node that the renderer knows must not be without a texture.
        if (isNew)
            root->appendChildNode(image);
        tile.isUploaded = true;
    }
    return root;
}
