#pragma once

#include <QByteArray>
#include <QSize>

#include <optional>

/// What a JPEG file's markers say about the work of decoding it.
struct JpegLayout
{
    QSize size;
    /// Passes over the image: 1 for a baseline photograph, about 10 for a progressive one.
    int scans = 0;
    /// Memory for the coefficients of the whole image, which the decoder holds when there is more
    /// than one pass; 0 otherwise.
    qint64 coefficientBytes = 0;
};

/// Nothing when the markers before the first pass are invalid.
std::optional<JpegLayout> jpegLayout(const QByteArray &jpeg);

/// The size of a JPEG file whose header can be walked from marker to marker, in a few steps and
/// without a decoder. Nothing for others, and for those with metadata, which may turn the picture.
std::optional<QSize> plainJpegSize(const QByteArray &jpeg);
