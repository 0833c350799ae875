#include "ExifOrientation.h"

#include "TiffDirectory.h"

#include <array>

QImageIOHandler::Transformations exifTransformation(QByteArrayView exif)
{
    // Some programs put the name in front that JPEG files need.
    const QByteArrayView name("Exif\0\0", 6);
    if (exif.startsWith(name))
        exif = exif.sliced(name.size());
    // By orientation, as EXIF 2.3 numbers them from 1.
    constexpr std::array transformations{
        QImageIOHandler::TransformationNone,
        QImageIOHandler::TransformationMirror,
        QImageIOHandler::TransformationRotate180,
        QImageIOHandler::TransformationFlip,
        QImageIOHandler::TransformationFlipAndRotate90,
        QImageIOHandler::TransformationRotate90,
        QImageIOHandler::TransformationMirrorAndRotate90,
        QImageIOHandler::TransformationRotate270,
    };
    const quint32 orientation = TiffDirectory(exif).value(TiffDirectory::Orientation).value_or(1);
    if (orientation < 1 || orientation > transformations.size())
        return QImageIOHandler::TransformationNone;
    return transformations[orientation - 1];
}
