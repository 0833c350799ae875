#pragma once

#include <QByteArrayView>
#include <QImageIOHandler>

/// The transformation that makes a picture with this EXIF data upright; none when there is no valid
/// orientation.
QImageIOHandler::Transformations exifTransformation(QByteArrayView exif);
