#include "AreaAverage.h"

#include <QImageIOHandler>

#include <algorithm>

namespace {

constexpr int channels = 4;
constexpr quint32 opaque = 255;

void add(quint32 *sum, const uchar *pixel, quint32 weight)
{
    const quint32 alpha = pixel[3];
    if (alpha == opaque) {
        sum[0] += pixel[0] * weight;
        sum[1] += pixel[1] * weight;
        sum[2] += pixel[2] * weight;
    } else {
        for (int channel = 0; channel < 3; ++channel)
            sum[channel] += (pixel[channel] * alpha + opaque / 2) / opaque * weight;
    }
    sum[3] += alpha * weight;
}

} // namespace

AreaAverage::AreaAverage(QSize source, QSize target)
    : m_source(source)
    , m_target(target)
    , m_row(qsizetype(target.width()) * channels)
    , m_sums(m_row.size() * target.height())
{ }

// Distances are counted so that every border of a pixel is a whole number: a source pixel is as
// wide as the target has columns, and a target pixel as wide as the source has columns. A row's
// sums stay below 2^32 for sources up to 16 million pixels wide.
void AreaAverage::addRow(int y, const uchar *pixels, int count, int first, int step)
{
    if (y < 0 || y >= m_source.height() || first < 0 || first >= m_source.width())
        return;
    const auto pixelWidth = quint32(m_target.width());
    const auto columnWidth = quint32(m_source.width());
    const qint64 start = qint64(first) * pixelWidth;
    const int end = std::min(count, (m_source.width() - first + step - 1) / step);
    std::fill(m_row.begin(), m_row.end(), 0U);
    quint32 *const row = m_row.data();
    qsizetype column = start / columnWidth * channels;
    auto offset = quint32(start % columnWidth);
    for (int i = 0; i < end; ++i, pixels += channels) {
        const quint32 room = columnWidth - offset;
        quint32 *sum = row + column;
        add(sum, pixels, std::min(pixelWidth, room));
        if (room < pixelWidth)
            add(sum + channels, pixels, pixelWidth - room);
        for (int k = 0; k < step; ++k) {
            offset += pixelWidth;
            if (offset >= columnWidth) {
                offset -= columnWidth;
                column += channels;
            }
        }
    }

    const qint64 pixelHeight = m_target.height();
    const qint64 rowHeight = m_source.height();
    const qint64 top = y * pixelHeight;
    const qint64 targetRow = top / rowHeight;
    const qint64 room = (targetRow + 1) * rowHeight - top;
    const auto addTo = [this](qint64 sumsRow, quint64 weight) {
        quint64 *sums = m_sums.data() + sumsRow * m_row.size();
        for (qsizetype i = 0; i < m_row.size(); ++i)
            sums[i] += m_row[i] * weight;
    };
    addTo(targetRow, quint64(std::min(pixelHeight, room)));
    if (room < pixelHeight)
        addTo(targetRow + 1, quint64(pixelHeight - room));
}

QImage AreaAverage::image() const
{
    QImage image;
    if (!QImageIOHandler::allocateImage(m_target, QImage::Format_RGBA8888_Premultiplied, &image))
        return {};
    const quint64 area = quint64(m_source.width()) * quint64(m_source.height());
    for (int y = 0; y < m_target.height(); ++y) {
        uchar *out = image.scanLine(y);
        const quint64 *sums = m_sums.data() + y * m_row.size();
        for (qsizetype i = 0; i < m_row.size(); ++i)
            out[i] = uchar((sums[i] + area / 2) / area);
    }
    return image;
}
