#pragma once

#include <QImage>
#include <QList>
#include <QSize>

/// Scales a picture down while its pixels are decoded, in any order. A pixel of the result is the
/// average of the source pixels it covers, weighted by area; pixels that were never added are
/// transparent. Takes 32 bytes for each pixel of the result, however large the source is.
class AreaAverage
{
public:
    /// `target` is at most as large as `source` in both directions.
    AreaAverage(QSize source, QSize target);

    /// Adds `count` pixels of row `y`, at the columns `first`, `first` + `step` and so on. A pixel
    /// is its red, green, blue and alpha, 8 bits each, the colours not multiplied by alpha. Pixels
    /// beyond the picture's edges are left out.
    void addRow(int y, const uchar *pixels, int count, int first = 0, int step = 1);

    /// The result so far. Null when there is no memory for it.
    QImage image() const;

private:
    QSize m_source;
    QSize m_target;
    /// One row at the target's width: the colours multiplied by alpha, weighted by width.
    QList<quint32> m_row;
    QList<quint64> m_sums;
};
