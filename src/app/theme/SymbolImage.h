#pragma once

#include <QColor>
#include <QImage>
#include <QString>

/// The side of the square a symbol takes next to text of `points`: its grid of 16 units is 1.125 em
/// wide, as in the fonts of symbols that sit beside capitals, and a whole number of points, so that
/// what is aligned to the grid stays sharp.
int symbolExtent(double points);

bool symbolExists(const QString &name);

/// The symbol in `color`, on a square of `symbolExtent(points)` logical pixels at `ratio` device
/// pixels each. `weight` as in QFont::Weight: heavier symbols have thicker lines, up to bold; a
/// filled symbol has none. Null for a name that does not exist. Kept for the next caller.
QImage symbolImage(const QString &name, double points, int weight, QColor color, double ratio);
