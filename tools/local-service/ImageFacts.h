#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

/// What can be said of an image without looking at what it shows.
struct ImageFacts
{
    /// "JPEG", "PNG" and the like, told by the content; empty when it is no raster image that
    /// Qt knows.
    QString format;
    /// In pixels, the right way up; empty when the header does not tell.
    QSize size;
    qsizetype byteCount = 0;
};

/// Reads no more than the header of `bytes`.
ImageFacts imageFacts(const QByteArray &bytes);
