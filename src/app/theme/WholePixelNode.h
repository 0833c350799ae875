#pragma once

#include <QSGTransformNode>

/// A length or a place, which is in units of the items, in whole pixels of the screen, `ratio` to
/// the unit. Halves all go the same way, so that neighbours keep their distance: on both sides of
/// zero, and though they are only known to a few digits.
double nearestPixel(double length, double ratio);

/// Shifts what is below it onto whole pixels of the screen, by half a pixel at most, just before
/// each frame is painted: where no layout and no scrolling can come between. An image that was made
/// pixel for pixel is then shown as it is; at a broken place each renderer would leave out some of
/// its lines or paint them twice.
///
/// What lies above it may move its items, but not turn or scale them.
class WholePixelNode : public QSGTransformNode
{
public:
    WholePixelNode() { setFlag(UsePreprocess); }

    /// Pixels of the screen for one unit of the items.
    void setRatio(double ratio) { m_ratio = ratio; }

    void preprocess() override;

private:
    double m_ratio = 1;
};
