#pragma once

#include "FileStamp.h"

#include <QString>

#include <optional>

/// The file of a database under a name that another program may give to something else at any time,
/// and what SQLite keeps beside it. Folder and files are the user's alone.
class DatabaseFile
{
public:
    enum class Presence { found, made, unusable };

    /// Where `path` is a symbolic link, the file is what it leads to. Nothing need be there.
    explicit DatabaseFile(QString path);

    /// Where the links lead now.
    QString path() const;
    /// There certainly is none, which a folder that cannot be looked into leaves open.
    bool isMissing() const;
    /// Something else than a file is there; opening it might wait for ever.
    bool isSomethingElse() const;
    /// In bytes, of the log too.
    qint64 size() const;
    /// In bytes, of what SQLite has not folded into the file yet.
    qint64 logSize() const;

    /// Makes the folder and an empty file where there are none. SQLite's own way would leave who
    /// may read them to the process's file mode mask; its further files take the database's mode. A
    /// file that was made is known from then on.
    Presence makePrivate();

    /// Takes the file with this stamp, from now on, for the one that this program uses.
    void setKnown(const FileStamp &stamp);
    /// Takes the state of the known file for this program's own doing.
    void noteOwnWrites();
    /// A file is known that was there.
    bool wasThere() const { return m_known && !m_known->isMissing(); }
    /// Whether another file than the known one is in its place; a missing one is none.
    bool isReplaced() const;
    /// Whether the known file is there as it was last noted, and whether it is there but changed.
    bool isAsNoted() const;
    bool isChanged() const;

    /// Keeps what is there, and what is beside it, under another name in the same folder, and
    /// leaves the place free. Returns that name, or nothing when it cannot be done.
    std::optional<QString> moveAside();
    /// Deletes all that was moved aside, now or by an earlier run; false when something stays.
    bool deleteAside() const;

private:
    const QString m_path;
    std::optional<FileStamp> m_known;
    /// The log that this program writes for the known file.
    std::optional<FileStamp> m_knownLog;
};
