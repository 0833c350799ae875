#pragma once

#include <QPainterPath>
#include <QRectF>

/// How far along an edge a continuous corner of radius 1 reaches, where the edge is long enough.
/// A circular corner reaches exactly 1.
double continuousCornerReach();

/// A rounded rectangle whose edges turn into their corners without a jump in curvature: a circle
/// of `radius` in the middle of each corner, and at both sides a curve between it and the edge.
/// `radius` is limited to half the shorter side; where an edge is too short for the whole
/// transition it is shortened, down to a plain circular corner, so a capsule's ends are round.
QPainterPath continuousRoundedPath(const QRectF &rect, double radius);
