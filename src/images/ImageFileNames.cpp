#include "ImageFileNames.h"

#include "ImageFormat.h"

#include <QMimeDatabase>

using namespace Qt::StringLiterals;

namespace {

/// What ends in `suffix`, as in *.[gG][iI][fF].
QString pattern(const QString &suffix)
{
    QString glob = u"*."_s;
    for (const QChar character : suffix) {
        if (!character.isLetter()) {
            glob += character;
            continue;
        }
        glob += u'[';
        glob += character.toLower();
        glob += character.toUpper();
        glob += u']';
    }
    return glob;
}

} // namespace

QStringList ImageFileNames::patterns()
{
    const QMimeDatabase types;
    QStringList globs;
    for (const ImageFormat &format : imageFormats()) {
        for (const char *mediaType : format.mediaTypes) {
            const QMimeType type = types.mimeTypeForName(QString::fromLatin1(mediaType));
            const QStringList suffixes = type.suffixes();
            for (const QString &suffix : suffixes)
                globs.append(pattern(suffix));
        }
        if (format.suffix)
            globs.append(pattern(QString::fromLatin1(format.suffix)));
    }
    globs.removeDuplicates();
    return globs;
}
