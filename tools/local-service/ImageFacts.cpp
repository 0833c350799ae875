#include "ImageFacts.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <array>

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

    // Only formats that hold pixels and nothing else: others name files that the reader would open.
    static constexpr std::array rasterFormats
        = {"jpeg"_L1, "png"_L1, "gif"_L1, "webp"_L1, "bmp"_L1, "tiff"_L1, "heic"_L1, "heif"_L1};
    const QString format = QString::fromLatin1(reader.format());
    if (std::find(rasterFormats.begin(), rasterFormats.end(), format) == rasterFormats.end())
        return facts;

    facts.format = format == "webp"_L1 ? u"WebP"_s : format.toUpper();
    facts.size = reader.size();
    if (reader.transformation() & QImageIOHandler::TransformationRotate90)
        facts.size.transpose();
    return facts;
}
