#pragma once

#include "WholePixelNode.h"

#include <QImage>
#include <QSGImageNode>
#include <QSizeF>

#include <array>
#include <memory>

class QQuickWindow;
class QSGTexture;

/// An image cut in nine, of which the outer parts stay as they are and the middle ones stretch to
/// any size. Its middle column and row of pixels are what stretches.
class NinePartNode : public WholePixelNode
{
public:
    explicit NinePartNode(QQuickWindow *window);

    /// Shows `image`, in pixels of the screen: as its device pixel ratio says.
    void setImage(const QImage &image, QQuickWindow *window);

    /// Stretches it to `size` in points, of which it takes whole pixels, with its top left at
    /// `corner`.
    void place(QSizeF size, QPointF corner = {});

private:
    std::unique_ptr<QSGTexture> m_texture;
    std::array<QSGImageNode *, 9> m_parts{};
    QSize m_imageSize; ///< in pixels
    double m_ratio = 1;
};
