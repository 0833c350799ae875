#pragma once

#include <QByteArray>

#include <optional>

/// The small picture kept with a message: a baseline JPEG of quality 0.68, upright, white under
/// transparency, its longest side at most 700 pixels, never enlarged and never the bytes given.
/// Nothing when they are no image that decodeImage() takes. May be called on any thread.
std::optional<QByteArray> makePreviewData(const QByteArray &bytes);
