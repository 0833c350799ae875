#pragma once

#include <QByteArray>

#include <optional>

/// How many quarter turns to the left (0 to 3) the primary picture of a HEIC file wants, when it
/// wants nothing else done to it; nothing when it is to be mirrored or cropped as well, or when the
/// file's boxes make no sense.
std::optional<int> quarterTurns(const QByteArray &heic);
