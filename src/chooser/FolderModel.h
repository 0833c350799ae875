#pragma once

#include "FolderListing.h"

#include <QAbstractListModel>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <memory>

/// What there is to choose from in one folder, read off the main thread. Roles: `name` (text to
/// show), `isFolder`, `file` (its URL, which holds any name).
class FolderModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    /// The folder's URL; another one is read at once, and the model is empty until that is done.
    Q_PROPERTY(QUrl folder READ folder WRITE setFolder NOTIFY folderChanged)
    /// The folder's name, to be shown.
    Q_PROPERTY(QString folderName READ folderName NOTIFY folderChanged)
    /// The folder that it is in; empty for the root.
    Q_PROPERTY(QUrl parentFolder READ parentFolder NOTIFY folderChanged)
    Q_PROPERTY(int count READ count NOTIFY stateChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

public:
    enum State {
        Reading,
        Complete,
        /// There is more in the folder than is listed.
        Incomplete,
        Unreadable,
    };
    Q_ENUM(State)

    using QAbstractListModel::QAbstractListModel;
    ~FolderModel() override;

    QUrl folder() const { return m_folder; }
    void setFolder(const QUrl &folder);
    QString folderName() const;
    QUrl parentFolder() const;
    int count() const { return int(m_entries.size()); }
    State state() const { return m_state; }

    /// The row of the entry with this URL; -1 where there is none.
    Q_INVOKABLE int rowOf(const QUrl &file) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void folderChanged();
    void stateChanged();

private:
    enum Role { NameRole = Qt::UserRole, IsFolderRole, FileRole };

    void show(QList<FolderEntry> entries, State state);

    QUrl m_folder;
    /// The folder's path, as the file system has it, with a slash at its end.
    QByteArray m_path;
    QList<FolderEntry> m_entries;
    State m_state = Reading;
    /// Stops the reading that is under way.
    std::shared_ptr<std::atomic_bool> m_isStopped = std::make_shared<std::atomic_bool>(false);
};
