#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>
#include <QSize>

enum class GifRows { FromTheTop, Interlaced };

/// A GIF of the picture, which has a palette of at most 128 colours, at `place` on a canvas of that
/// size; the index `transparent`, if it is not negative, is transparent.
QByteArray gifOf(const QImage &indexed, QSize canvas, QPoint place, GifRows rows,
                 int transparent = -1);

/// A gray GIF of one colour, whose pixels take a thousandth of their room.
QByteArray flatGif(QSize size);
