#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <atomic>

/// A file or a folder in a folder.
struct FolderEntry
{
    /// As the file system has it: names need not be UTF-8.
    QByteArray name;
    bool isFolder = false;

    bool operator==(const FolderEntry &) const = default;
};

/// What there is to choose from in a folder.
struct FolderListing
{
    /// How much of it could be read.
    enum class Extent { All, Part, None };

    Extent extent = Extent::All;
    QList<FolderEntry> entries;
};

/// The most entries listed of one folder.
constexpr qsizetype maximumFolderEntries = 10'000;

/// The folders in the folder at `path`, as the file system has it, and then its image files by
/// their names, each in the order of the Spanish alphabet and of the numbers in their names. What
/// is hidden is left out, and so is whatever is no regular file. Waits for the disk: call it off
/// the main thread. Ends early, with anything, once `isStopped`.
FolderListing listFolder(const QByteArray &path, const std::atomic_bool &isStopped);

/// A file name as text of one line: what is not UTF-8, and what would be shown as something else
/// than a character in its place, is U+FFFD.
QString shownFileName(const QByteArray &name);
