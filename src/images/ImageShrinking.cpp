#include "ImageShrinking.h"

#include "AreaAverage.h"

#include <QColorSpace>

#include <algorithm>

QImage shrunk(const QImage &image, QSize size)
{
    constexpr int pixelsPerBand = 1 << 16;
    const int rowsPerBand = std::max(1, pixelsPerBand / image.width());
    AreaAverage average(image.size(), size);
    for (int top = 0; top < image.height(); top += rowsPerBand) {
        QImage band(image.constScanLine(top), image.width(),
                    std::min(rowsPerBand, image.height() - top), image.bytesPerLine(),
                    image.format());
        band.setColorTable(image.colorTable());
        band.convertTo(QImage::Format_RGBA8888);
        for (int y = 0; y < band.height(); ++y)
            average.addRow(top + y, band.constScanLine(y), band.width());
    }
    QImage result = average.image();
    result.setColorSpace(image.colorSpace());
    return result;
}
