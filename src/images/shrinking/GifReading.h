#pragma once

#include "ImageHeader.h"

#include <QByteArrayView>
#include <QImage>

#include <optional>

std::optional<ImageHeader> gifHeader(QByteArrayView gif);

/// The first picture of the file on its canvas, at `size`, row by row and transparent where it does
/// not reach. Null for damaged files, and for a picture larger than any canvas.
QImage decodedGif(QByteArrayView gif, QSize size);
