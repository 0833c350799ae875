#pragma once

#include <QImage>
#include <QSize>

struct heif_image;

/// The planes of a decoded HEIC picture put together at `size`, which is at most the picture's own:
/// an average of all samples, so that fine patterns turn gray and make no moiré. Null for planes of
/// a kind that photographs do not have.
QImage imageFromPlanes(const heif_image *picture, QSize size);
