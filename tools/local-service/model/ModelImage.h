#pragma once

#include <QByteArray>

#include <optional>

/// In pixels: more is scaled down by the services anyway.
constexpr int longestModelImageSide = 1280;

/// The picture in `bytes`, which may be anything, as an upright JPEG whose longest side is at most
/// `longestModelImageSide`. Nothing when it is no raster image that can be read, or too large a
/// one.
std::optional<QByteArray> modelImage(const QByteArray &bytes);
