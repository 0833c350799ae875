#pragma once

#include <QByteArray>

#include <optional>

/// The rotation of a HEIC file's primary picture, counterclockwise in steps of 90° (0 to 3).
/// Nothing when the picture is to be mirrored or cropped as well, or when the file's boxes are
/// damaged.
std::optional<int> heifRotation(const QByteArray &heic);
