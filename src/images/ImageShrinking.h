#pragma once

#include <QImage>
#include <QSize>

/// `image` at the smaller `size`, every pixel of it counted once. Works on a few rows at a time: a
/// whole picture in Qt's working format would be four times a palette picture.
QImage shrunk(const QImage &image, QSize size);
