#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

/// The picture in `bytes`, upright, in sRGB, shrunk until its longest side is at most `longestSide`
/// pixels, never enlarged; the first one of an animation or of many pages. Nothing when the bytes
/// are not one of the formats the program takes, are damaged beyond reading, or ask for more than
/// the limits of ImageLimits.h. Opens no file and may be called on any thread.
std::optional<QImage> decodeImage(const QByteArray &bytes, int longestSide);
