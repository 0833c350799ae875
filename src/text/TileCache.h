#pragma once

#include "VerticalBand.h"

#include <QImage>
#include <QPointF>
#include <QSizeF>

#include <functional>
#include <map>

class QPainter;
class QQuickWindow;
class QSGNode;

/// A tall picture of which only what is near the eye exists: strips of one height, painted when
/// they come near and dropped when they have gone. A long message costs no more memory and no more
/// time to paint than the window shows of it.
class TileCache
{
public:
    /// Draws what lies in a band, at its place in the whole picture.
    using Paint = std::function<void(QPainter &, VerticalBand)>;

    static constexpr int tileHeight = 128;
    /// Glyphs may reach this far beyond the picture's left and right edges, and beyond their lines.
    static constexpr int bleed = 8;

    /// What is in `band` has changed and is painted anew at the next update.
    void invalidate(VerticalBand band);
    void invalidateAll();

    /// Drops the strips outside `band` and paints the missing and changed ones of a picture of
    /// `size`, with `ratio` pixels a point. Returns whether anything differs.
    bool update(VerticalBand band, QSizeF size, double ratio, const Paint &paint);

    /// Shifts the picture, in points: onto whole pixels of the screen, where strips meet without a
    /// seam and text is as sharp as it was painted. Returns whether that is a change.
    bool setOffset(QPointF offset);

    /// Brings the scene in line, on the renderer's thread; `node` is what the last call returned.
    QSGNode *synchronize(QSGNode *node, QQuickWindow *window);

private:
    struct Tile
    {
        QImage image;
        VerticalBand stale; ///< what of the picture is to be painted anew
        bool isUploaded = false;
    };

    static VerticalBand bandOf(int index);
    void paintTile(int index, Tile &tile, const Paint &paint) const;

    std::map<int, Tile> m_tiles;
    QPointF m_offset;
    QSizeF m_size;
    double m_ratio = 0;
};
