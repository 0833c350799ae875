#include "FolderListing.h"

#include "ImageFileNames.h"

#include <QCollator>
#include <QSet>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace {

QSet<QByteArray> imageSuffixes()
{
    QSet<QByteArray> suffixes;
    const QStringList all = ImageFileNames::suffixes();
    for (const QString &suffix : all)
        suffixes.insert(suffix.toUtf8());
    return suffixes;
}

bool isNamedAsImage(const QByteArray &name)
{
    static const QSet<QByteArray> suffixes = imageSuffixes();
    const qsizetype dot = name.lastIndexOf('.');
    return dot > 0 && suffixes.contains(name.sliced(dot + 1).toLower());
}

/// What can be chosen or opened; links count as what they lead to.
bool isListed(const std::filesystem::directory_entry &entry, const FolderEntry &listed)
{
    if (listed.name.startsWith('.'))
        return false;
    std::error_code error;
    return listed.isFolder || (isNamedAsImage(listed.name) && entry.is_regular_file(error));
}

void sort(QList<FolderEntry> &entries)
{
    QCollator collator(QLocale(QLocale::Spanish));
    collator.setNumericMode(true);
    struct Place
    {
        bool isFile;
        QCollatorSortKey key;
        FolderEntry entry;
    };
    std::vector<Place> places;
    places.reserve(entries.size());
    for (const FolderEntry &entry : std::as_const(entries)) {
        places.push_back({.isFile = !entry.isFolder,
                          .key = collator.sortKey(shownFileName(entry.name)),
                          .entry = entry});
    }
    std::sort(places.begin(), places.end(), [](const Place &left, const Place &right) {
        if (left.isFile != right.isFile)
            return right.isFile;
        const int order = left.key.compare(right.key);
        return order == 0 ? left.entry.name < right.entry.name : order < 0;
    });
    std::transform(places.begin(), places.end(), entries.begin(),
                   [](const Place &place) { return place.entry; });
}

bool isShown(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    case QChar::Other_Format: {
        // Joiners are part of words and of emoji; the others turn the text around or hide.
        constexpr char32_t zeroWidthNonJoiner = 0x200C;
        constexpr char32_t zeroWidthJoiner = 0x200D;
        return character == zeroWidthNonJoiner || character == zeroWidthJoiner;
    }
    default:
        return true;
    }
}

} // namespace

FolderListing listFolder(const QByteArray &path, const std::atomic_bool &isStopped)
{
    FolderListing listing;
    std::error_code error;
    std::filesystem::directory_iterator iterator(path.toStdString(), error);
    if (error)
        return {.extent = FolderListing::Extent::None, .entries = {}};
    while (iterator != std::filesystem::directory_iterator() && !isStopped) {
        const auto &entry = *iterator;
        std::error_code unknown;
        const FolderEntry listed{.name
                                 = QByteArray::fromStdString(entry.path().filename().string()),
                                 .isFolder = entry.is_directory(unknown)};
        if (isListed(entry, listed)) {
            if (listing.entries.size() == maximumFolderEntries) {
                listing.extent = FolderListing::Extent::Part;
                break;
            }
            listing.entries.append(listed);
        }
        iterator.increment(error);
        if (error)
            listing.extent = FolderListing::Extent::Part;
    }
    sort(listing.entries);
    return listing;
}

QString shownFileName(const QByteArray &name)
{
    const QList<uint> characters = QString::fromUtf8(name).toUcs4();
    QString shown;
    for (const char32_t character : characters) {
        if (isShown(character))
            shown += QStringView(QChar::fromUcs4(character));
        else
            shown += QChar(QChar::ReplacementCharacter);
    }
    return shown;
}
