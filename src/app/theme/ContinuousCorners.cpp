#include "ContinuousCorners.h"

#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

/// The angle of each of a corner's two transitions; the circle between them has the rest of the
/// 90°. With 38° a corner reaches about 1.5 times as far along its edges as a circular one.
constexpr double fullTurn = 38 * std::numbers::pi / 180;

/// One transition from a straight edge to the circle of radius 1 centred one unit inside, as a
/// cubic Bézier curve. Distances are along the edge from the corner of the rectangle, where the
/// edge and the circle's tangent at the far end lie.
struct Transition
{
    double start; ///< where the curve leaves the edge, with curvature 0
    double firstControl;
    double secondControl; ///< where the edge meets the tangent at the end
    double turn; ///< radians, the curve's end on the circle; there its curvature is 1
};

/// With both controls on the edge, the curvature is 0 at the start. At the end it is
/// 2/3 · (distance of the first control from the end's tangent) / (length of the end's handle)²,
/// which, set to 1, gives the distance between the controls.
Transition transition(double turn)
{
    if (turn <= 0)
        return {.start = 1, .firstControl = 1, .secondControl = 1, .turn = 0};
    const double handle = std::tan(turn / 2);
    const double betweenControls = 1.5 * handle * handle / std::sin(turn);
    const double secondControl = 1 - handle;
    const double firstControl = secondControl + betweenControls;
    return {.start = firstControl + 2 * betweenControls,
            .firstControl = firstControl,
            .secondControl = secondControl,
            .turn = turn};
}

/// The longest transition that fits in `room`. The reach is a convex function of the turn, so a
/// turn interpolated in a straight line never reaches too far.
Transition transitionWithin(double room)
{
    const double reach = continuousCornerReach();
    return transition(fullTurn * std::clamp((room - 1) / (reach - 1), 0.0, 1.0));
}

/// Appends the corner at the origin, coming from (0, y) and leaving along (x, 0), for radius 1.
void addCorner(QPainterPath &path, const QTransform &place, const Transition &in,
               const Transition &out, bool first)
{
    const auto onCircle
        = [](double angle) { return QPointF(1 - std::cos(angle), 1 - std::sin(angle)); };
    const double inAngle = in.turn;
    const double outAngle = std::numbers::pi / 2 - out.turn;
    const double arcHandle = 4.0 / 3 * std::tan((outAngle - inAngle) / 4);
    const auto arcTangent = [arcHandle](double angle) {
        return arcHandle * QPointF(std::sin(angle), -std::cos(angle));
    };

    const QPointF start = place.map(QPointF(0, in.start));
    if (first)
        path.moveTo(start);
    else
        path.lineTo(start);
    path.cubicTo(place.map(QPointF(0, in.firstControl)), place.map(QPointF(0, in.secondControl)),
                 place.map(onCircle(inAngle)));
    path.cubicTo(place.map(onCircle(inAngle) + arcTangent(inAngle)),
                 place.map(onCircle(outAngle) - arcTangent(outAngle)),
                 place.map(onCircle(outAngle)));
    path.cubicTo(place.map(QPointF(out.secondControl, 0)), place.map(QPointF(out.firstControl, 0)),
                 place.map(QPointF(out.start, 0)));
}

} // namespace

double continuousCornerReach()
{
    static const double reach = transition(fullTurn).start;
    return reach;
}

QPainterPath continuousRoundedPath(const QRectF &rect, double radius)
{
    QPainterPath path;
    const double limited = std::min({radius, rect.width() / 2, rect.height() / 2});
    if (!(limited > 0)) {
        path.addRect(rect);
        return path;
    }

    const auto horizontal = transitionWithin(rect.width() / 2 / limited);
    const auto vertical = transitionWithin(rect.height() / 2 / limited);
    const auto place = [limited](QPointF corner, double degrees) {
        return QTransform::fromTranslate(corner.x(), corner.y())
            .rotate(degrees)
            .scale(limited, limited);
    };
    addCorner(path, place(rect.topLeft(), 0), vertical, horizontal, true);
    addCorner(path, place(rect.topRight(), 90), horizontal, vertical, false);
    addCorner(path, place(rect.bottomRight(), 180), vertical, horizontal, false);
    addCorner(path, place(rect.bottomLeft(), 270), horizontal, vertical, false);
    path.closeSubpath();
    return path;
}
