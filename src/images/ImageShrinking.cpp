#include "ImageShrinking.h"

#include <QList>

#include <algorithm>

namespace {

constexpr int channels = 4;

/// Sums the rows of `band`, in blocks `factor` pixels wide, into four channels a block.
void addBand(const QImage &band, int factor, QList<quint32> &sums)
{
    for (int y = 0; y < band.height(); ++y) {
        const uchar *pixel = band.constScanLine(y);
        quint32 *sum = sums.data();
        for (int x = 0; x < band.width(); x += factor, sum += channels) {
            const int end = std::min(x + factor, band.width());
            for (int i = x; i < end; ++i, pixel += channels) {
                sum[0] += pixel[0];
                sum[1] += pixel[1];
                sum[2] += pixel[2];
                sum[3] += pixel[3];
            }
        }
    }
}

/// Every block of `factor` × `factor` pixels averaged to one; blocks at the far edges may be
/// smaller.
QImage averagedBlocks(const QImage &image, int factor)
{
    constexpr int pixelsPerBand = 1 << 16;
    const QImage::Format format = QImage::Format_ARGB32_Premultiplied;
    const int width = (image.width() + factor - 1) / factor;
    const int height = (image.height() + factor - 1) / factor;
    QImage blocks(width, height, format);
    if (blocks.isNull())
        return blocks;
    const int rowsPerBand = std::clamp(pixelsPerBand / image.width(), 1, factor);
    QList<quint32> sums(qsizetype(width) * channels);
    for (int y = 0; y < height; ++y) {
        const int blockEnd = std::min((y + 1) * factor, image.height());
        std::fill(sums.begin(), sums.end(), 0U);
        for (int row = y * factor; row < blockEnd; row += rowsPerBand) {
            QImage band(image.constScanLine(row), image.width(),
                        std::min(rowsPerBand, blockEnd - row), image.bytesPerLine(),
                        image.format());
            band.setColorTable(image.colorTable());
            addBand(std::move(band).convertToFormat(format), factor, sums);
        }
        uchar *out = blocks.scanLine(y);
        const int blockHeight = blockEnd - y * factor;
        for (int x = 0; x < width; ++x) {
            const auto area = quint32(std::min(factor, image.width() - x * factor) * blockHeight);
            for (int channel = 0; channel < channels; ++channel, ++out)
                *out = uchar((sums[x * channels + channel] + area / 2) / area);
        }
    }
    return blocks;
}

} // namespace

QImage shrunk(const QImage &image, QSize size)
{
    const int factor = std::min(image.width() / size.width(), image.height() / size.height());
    const QImage near = factor > 1 ? averagedBlocks(image, factor) : image;
    return near.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
