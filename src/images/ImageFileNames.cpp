#include "ImageFileNames.h"

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
    // HEIC and HEIF are one type to some databases and two to others.
    const QStringList typeNames{u"image/jpeg"_s, u"image/png"_s,  u"image/gif"_s,  u"image/webp"_s,
                                u"image/bmp"_s,  u"image/tiff"_s, u"image/heic"_s, u"image/heif"_s};
    const QMimeDatabase types;
    QStringList globs;
    for (const QString &name : typeNames) {
        const QStringList suffixes = types.mimeTypeForName(name).suffixes();
        for (const QString &suffix : suffixes)
            globs.append(pattern(suffix));
    }
    globs.removeDuplicates();
    return globs;
}
