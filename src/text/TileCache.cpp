#include "TileCache.h"

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
    return int(std::floor(band.top / TileCache::tileHeight));
}

int endTile(VerticalBand band)
{
    return int(std::ceil(band.bottom / TileCache::tileHeight));
}
} // namespace

VerticalBand TileCache::bandOf(int index)
{
    const double top = double(index) * tileHeight;
    return {top, top + tileHeight};
}

void TileCache::invalidate(VerticalBand band)
{
    const VerticalBand reached{band.top - bleed, band.bottom + bleed};
    const auto end = m_tiles.lower_bound(endTile(reached));
    for (auto tile = m_tiles.lower_bound(firstTile(reached)); tile != end; ++tile) {
        const VerticalBand whole = bandOf(tile->first);
        VerticalBand &stale = tile->second.stale;
        if (stale.isEmpty())
            stale = {whole.bottom, whole.top};
        stale = {std::max(whole.top, std::min(stale.top, reached.top)),
                 std::min(whole.bottom, std::max(stale.bottom, reached.bottom))};
    }
}

void TileCache::invalidateAll()
{
    for (auto &[index, tile] : m_tiles)
        tile.stale = bandOf(index);
}

bool TileCache::update(VerticalBand band, QSizeF size, double ratio, const Paint &paint)
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
    for (int index = first; index < end; ++index) {
        const auto [place, isNew] = m_tiles.try_emplace(index);
        Tile &tile = place->second;
        if (isNew)
            tile.stale = bandOf(index);
        if (tile.stale.isEmpty())
            continue;
        paintTile(index, tile, paint);
        differs = true;
    }
    return differs;
}

void TileCache::paintTile(int index, Tile &tile, const Paint &paint) const
{
    const VerticalBand whole = bandOf(index);
    const QSize pixels
        = (QSizeF(std::ceil(m_size.width()) + 2 * bleed, tileHeight) * m_ratio).toSize();
    if (tile.image.size() != pixels || tile.stale == whole) {
        tile.image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        tile.image.fill(Qt::transparent);
        tile.image.setDevicePixelRatio(m_ratio);
    }
    // Whole pixels: half of one would be painted twice, over itself.
    const double top = std::floor((tile.stale.top - whole.top) * m_ratio) / m_ratio;
    const double bottom = std::ceil((tile.stale.bottom - whole.top) * m_ratio) / m_ratio;
    const QRectF stale(0, top, tile.image.deviceIndependentSize().width(), bottom - top);

    QPainter painter(&tile.image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setClipRect(stale);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(stale, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.translate(bleed, -whole.top);
    paint(painter, {whole.top + top - bleed, whole.top + bottom + bleed});
    tile.stale = {};
    tile.isUploaded = false;
}

bool TileCache::setOffset(QPointF offset)
{
    if (m_offset == offset)
        return false;
    m_offset = offset;
    return true;
}

QSGNode *TileCache::synchronize(QSGNode *node, QQuickWindow *window)
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
