#pragma once

#include "FileStamp.h"

#include <QString>

#include <optional>

/// The file of a database and what SQLite keeps beside it. Another program may put something else
/// in its place at any time. Only the user may read the folder and the files.
class DatabaseFile
{
public:
    enum class Presence { found, made, unusable };

    /// Where `path` is a symbolic link, the file is what it leads to. Nothing need be there.
    explicit DatabaseFile(QString path);

    /// Where the links lead now.
    QString path() const;
    /// True only when there certainly is no file; false too when the folder cannot be read.
    bool isMissing() const;
    /// A folder, pipe or device is in its place; opening it might block for ever.
    bool isSomethingElse() const;
    /// Bytes of the file and its log together.
    qint64 size() const;
    /// Bytes of the log, which SQLite has not copied into the file yet.
    qint64 logSize() const;

    /// Creates the folder and an empty file where they are missing, for the user alone: SQLite
    /// would create the file with the rights that the umask leaves. The files that SQLite adds get
    /// the same rights as this one. A created file becomes the known one.
    Presence makePrivate();

    /// From now on the known file, which is the one this program uses, is the one with this stamp.
    void setKnown(const FileStamp &stamp);
    /// Notes the present state of the known file as written by this program.
    void noteOwnWrites();
    /// A file is known that was there.
    bool wasThere() const { return m_known && !m_known->isMissing(); }
    /// Whether another file is in the known one's place; false when there is none at all.
    bool isReplaced() const;
    /// Whether the known file is there as it was last noted, and whether it is there but changed.
    bool isAsNoted() const;
    bool isChanged() const;

    /// Renames the file and those beside it within the folder. Returns the new name, or nothing
    /// when that fails.
    std::optional<QString> moveAside();
    /// Deletes all that was moved aside, now or by an earlier run; false when something stays.
    bool deleteAside() const;

private:
    const QString m_path;
    std::optional<FileStamp> m_known;
    /// The log that this program writes for the known file.
    std::optional<FileStamp> m_knownLog;
};
