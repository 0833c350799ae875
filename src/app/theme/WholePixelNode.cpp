#include "WholePixelNode.h"

#include <QPointF>

#include <cmath>

double nearestPixel(double length, double ratio)
{
    constexpr double half = 0.51;
    return std::floor(length * ratio + half);
}

void WholePixelNode::preprocess()
{
    QPointF place;
    for (const QSGNode *node = parent(); node; node = node->parent()) {
        if (node->type() == QSGNode::TransformNodeType)
            place = static_cast<const QSGTransformNode *>(node)->matrix().map(place);
    }
    const auto shift = [this](double length) {
        return static_cast<float>((nearestPixel(length, m_ratio) / m_ratio) - length);
    };
    QMatrix4x4 shifted;
    shifted.translate(shift(place.x()), shift(place.y()));
    if (shifted == matrix())
        return;
    setMatrix(shifted);
    markDirty(DirtyMatrix);
}
