#pragma once

#include <QByteArray>

#include <optional>

/// The small picture kept with a message: a baseline JPEG of quality 0.68, upright, white under
/// transparency, its longest side at most `maximumPreviewSide`, never enlarged and always encoded
/// anew. Nothing when `bytes` are no image that decodeImage() takes. May be called on any thread.
std::optional<QByteArray> makePreviewData(const QByteArray &bytes);
