#pragma once

#include "ImageHeader.h"

#include <QByteArrayView>
#include <QImage>

#include <optional>

std::optional<ImageHeader> webpHeader(QByteArrayView webp);

/// The picture, or the first one of an animation on its canvas, at `size`, with its colour space.
/// Null for damaged files.
QImage decodedWebp(QByteArrayView webp, QSize size);
