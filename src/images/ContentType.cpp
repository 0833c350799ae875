#include "ContentType.h"

#include "ChatMessage.h"
#include "ImageFormat.h"

#include <QMimeDatabase>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// True for a media type of our own table, which type databases may not have.
bool isTakenType(const QString &typeIdentifier)
{
    const auto formats = imageFormats();
    return std::any_of(formats.begin(), formats.end(), [&](const ImageFormat &format) {
        return typeIdentifier == QLatin1String(format.mediaTypes.front());
    });
}

} // namespace

std::optional<QString> typeForExtension(const QString &extension)
{
    if (extension.isEmpty())
        return std::nullopt;
    for (const ImageFormat &format : imageFormats()) {
        if (extension.compare(QLatin1String(format.suffix), Qt::CaseInsensitive) == 0)
            return QString::fromLatin1(format.mediaTypes.front());
    }
    const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(u"file."_s + extension);
    if (types.isEmpty())
        return std::nullopt;
    return types.first().name();
}

bool conformsToImage(const QString &typeIdentifier)
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(typeIdentifier);
    return isTakenType(typeIdentifier) || (type.isValid() && type.name().startsWith("image/"_L1));
}

QString preferredMimeType(const std::optional<QString> &typeIdentifier)
{
    if (typeIdentifier && isTakenType(*typeIdentifier))
        return *typeIdentifier;
    const QMimeType type
        = typeIdentifier ? QMimeDatabase().mimeTypeForName(*typeIdentifier) : QMimeType();
    return type.isValid() ? type.name() : defaultImageMimeType;
}
