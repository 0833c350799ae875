#include "TiffLayout.h"

#include "TiffDirectory.h"

#include <algorithm>
#include <limits>

namespace {

/// a × b, or the largest number when that is too large: four 32-bit numbers from a hostile file
/// would overflow.
qint64 saturatedProduct(qint64 a, qint64 b)
{
    qint64 product = 0;
    return qMulOverflow(a, b, &product) ? std::numeric_limits<qint64>::max() : product;
}

} // namespace

std::optional<TiffLayout> tiffLayout(const QByteArray &tiff)
{
    const TiffDirectory directory(tiff);
    const auto width = directory.value(TiffDirectory::ImageWidth);
    const auto length = directory.value(TiffDirectory::ImageLength);
    if (!width || !length)
        return std::nullopt;

    const auto bitsPerSample = qint64(directory.value(TiffDirectory::BitsPerSample).value_or(1));
    const auto samplesPerPixel
        = qint64(directory.value(TiffDirectory::SamplesPerPixel).value_or(1));
    const auto tileWidth = directory.value(TiffDirectory::TileWidth);
    const auto tileLength = directory.value(TiffDirectory::TileLength);
    const bool isTiled = tileWidth && tileLength;
    const qint64 pieceWidth = isTiled ? *tileWidth : *width;
    const qint64 pieceLength = isTiled
        ? *tileLength
        : std::min(*length, directory.value(TiffDirectory::RowsPerStrip).value_or(*length));
    const qint64 pieceSamples
        = saturatedProduct(saturatedProduct(pieceWidth, pieceLength), samplesPerPixel);
    return TiffLayout{.pieceBytes = saturatedProduct(pieceSamples, bitsPerSample) / 8,
                      .bitsPerSample = int(bitsPerSample),
                      .samplesPerPixel = int(samplesPerPixel)};
}
