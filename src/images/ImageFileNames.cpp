#include "ImageFileNames.h"

#include "ImageFormat.h"

#include <QMimeDatabase>

using namespace Qt::StringLiterals;

namespace {

/// The glob for `suffix` in either case, such as *.[gG][iI][fF].
QString pattern(const QString &suffix)
{
    QString glob = u"*."_s;
    for (const QChar character : suffix) {
        if (!character.isLetter()) {
            glob += character;
            continue;
        }
        glob += u'[';
        glob += character;
        glob += character.toUpper();
        glob += u']';
    }
    return glob;
}

} // namespace

QStringList ImageFileNames::suffixes()
{
    const QMimeDatabase types;
    QStringList all;
    for (const ImageFormat &format : imageFormats()) {
        for (const char *mediaType : format.mediaTypes) {
            const QStringList suffixes
                = types.mimeTypeForName(QString::fromLatin1(mediaType)).suffixes();
            for (const QString &suffix : suffixes)
                all.append(suffix.toLower());
        }
        if (format.suffix)
            all.append(QString::fromLatin1(format.suffix));
    }
    all.removeDuplicates();
    return all;
}

QStringList ImageFileNames::patterns()
{
    QStringList globs;
    const QStringList all = suffixes();
    for (const QString &suffix : all)
        globs.append(pattern(suffix));
    return globs;
}
