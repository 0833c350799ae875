#pragma once

#include <QByteArrayView>
#include <QImageIOHandler>

/// What the orientation in EXIF data asks to be done with the picture: nothing, when there is none
/// or when it makes no sense.
QImageIOHandler::Transformations exifTransformation(QByteArrayView exif);
