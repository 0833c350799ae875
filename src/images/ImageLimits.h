#pragma once

#include <QtGlobal>

/// The largest image taken, in bytes; a whole number of MiB, which an error message states.
constexpr qint64 maximumImageBytes = qint64(12) * 1024 * 1024;

/// The largest image decoded, in pixels: above any camera of today.
constexpr qint64 maximumImagePixels = 120'000'000;

/// The most memory a decoder may need, in bytes, by its own estimate. A photograph of 48 megapixels
/// stays far below it; together with everything around the decoder it keeps the growth of the
/// program's memory under 256 MB.
constexpr qint64 maximumDecodingBytes = qint64(216) * 1024 * 1024;

/// The most pixels a decoder may visit, counting every pass over the image. Files that go over the
/// same large picture hundreds of times in a few bytes a pass would hold the decoder for minutes.
constexpr qint64 maximumDecodingWork = 1'200'000'000;

/// The longest side of the preview kept with a message, in pixels.
constexpr int maximumPreviewSide = 700;
