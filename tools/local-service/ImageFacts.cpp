#include "ImageFacts.h"

#include "RasterFormat.h"

#include <QBuffer>
#include <QImageReader>

using namespace Qt::StringLiterals;

ImageFacts imageFacts(const QByteArray &bytes)
{
    ImageFacts facts;
    facts.byteCount = bytes.size();

    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);

    const QString format = QString::fromLatin1(reader.format());
    if (!isRasterFormat(reader.format()))
        return facts;

    facts.format = format == "webp"_L1 ? u"WebP"_s : format.toUpper();
    facts.size = reader.size();
    if (reader.transformation() & QImageIOHandler::TransformationRotate90)
        facts.size.transpose();
    return facts;
}
