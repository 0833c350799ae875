#pragma once

#include <QImage>
#include <QList>
#include <QSize>

/// A picture shrunk while its pixels come, in any order: every pixel counts in the result by the
/// area it covers there, and what never came is transparent. It holds 32 bytes for every pixel of
/// the result, however large the picture is.
class AreaAverage
{
public:
    /// `target` is at most as large as `source` in both directions.
    AreaAverage(QSize source, QSize target);

    /// Adds `count` pixels of row `y`, at the columns `first`, `first` + `step` and so on. A pixel
    /// is its red, green, blue and alpha, 8 bits each, the colours not multiplied by alpha. Pixels
    /// beyond the picture's edges are left out.
    void addRow(int y, const uchar *pixels, int count, int first = 0, int step = 1);

    /// The average of all that came. Null when there is no memory for it.
    QImage image() const;

private:
    QSize m_source;
    QSize m_target;
    /// One row at the target's width: the colours multiplied by alpha, weighted by width.
    QList<quint32> m_row;
    QList<quint64> m_sums;
};
