#pragma once

#include <QImage>
#include <QSize>

/// `image` scaled down to `size` by AreaAverage. Converts a few rows at a time: a whole palette
/// picture would take four times its memory in the format that is averaged.
QImage shrunk(const QImage &image, QSize size);
