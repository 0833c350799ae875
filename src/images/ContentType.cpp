#include "ContentType.h"

#include <QMimeDatabase>

using namespace Qt::StringLiterals;

namespace {

/// The database takes HEIC for an alias of HEIF, its container; what phones take is image/heic.
const QString heicType = u"image/heic"_s;

} // namespace

std::optional<QString> typeForExtension(const QString &extension)
{
    if (extension.isEmpty())
        return std::nullopt;
    if (extension.compare("heic"_L1, Qt::CaseInsensitive) == 0)
        return heicType;
    const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(u"file."_s + extension);
    if (types.isEmpty())
        return std::nullopt;
    return types.first().name();
}

bool conformsToImage(const QString &typeIdentifier)
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(typeIdentifier);
    return typeIdentifier == heicType || (type.isValid() && type.name().startsWith("image/"_L1));
}

QString preferredMimeType(const std::optional<QString> &typeIdentifier)
{
    if (typeIdentifier == heicType)
        return heicType;
    const QMimeType type
        = typeIdentifier ? QMimeDatabase().mimeTypeForName(*typeIdentifier) : QMimeType();
    return type.isValid() ? type.name() : u"image/jpeg"_s;
}
