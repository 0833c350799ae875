// Tests of taking images in and showing them. Samples are made on the spot; only what Qt
// cannot write is kept here as text.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

/// Four quarters: red, green, blue and yellow, from the top left in reading order.
QImage quarters(QSize size);

/// True when `image` shows quarters() upright, up to the losses of compression.
bool showsQuarters(const QImage &image);

/// `image` in a format Qt writes; quality as QImageWriter::setQuality() takes it, its
/// default for -1.
QByteArray encoded(const QImage &image, const QByteArray &format, int quality = -1);
QByteArray encodedProgressively(const QImage &image);

/// The picture as a rotated camera would store it, so that EXIF's `orientation` (1 to 8) makes it
/// upright.
QImage storedWithOrientation(const QImage &upright, int orientation);

/// The JPEG with an EXIF segment that says `orientation`.
QByteArray withExifOrientation(const QByteArray &jpeg, int orientation);
/// The PNG with an eXIf chunk that says `orientation`.
QByteArray pngWithExifOrientation(const QByteArray &png, int orientation);
/// The WebP of that size, which has no extended header yet, with an EXIF chunk that says
/// `orientation`.
QByteArray webpWithExifOrientation(const QByteArray &webp, QSize size, int orientation);

/// A PNG chunk with its length and its check sum.
QByteArray pngChunk(const QByteArray &type, const QByteArray &data);

/// The PNG with one chunk more, right after its header.
QByteArray withPngChunk(const QByteArray &png, const QByteArray &chunk);

/// A PNG of one colour, of any size and kind, whose pixels are compressed to a thousandth: 1-bit
/// gray unless said otherwise.
struct PngKind
{
    int bitDepth = 1;
    int colorType = 0;
    int bytesPerRow = 0;
    bool interlaced = false;
};
QByteArray flatPng(QSize size, const PngKind &kind);
/// A PNG of those rows, each behind the number of its filter.
QByteArray pngOf(QSize size, const PngKind &kind, const QByteArray &rows);

/// 40 × 20, four inks.
QByteArray cmykJpeg();
/// 12 × 8, red.
QByteArray interlacedPng();
/// 12 × 8, a red frame and then a blue one.
QByteArray animatedGif();
