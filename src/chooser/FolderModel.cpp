#include "FolderModel.h"

#include "BackgroundWork.h"
#include "LocalFile.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

FolderModel::State stateAfter(FolderListing::Extent extent)
{
    switch (extent) {
    case FolderListing::Extent::All:
        return FolderModel::Complete;
    case FolderListing::Extent::Part:
        return FolderModel::Incomplete;
    case FolderListing::Extent::None:
        break;
    }
    return FolderModel::Unreadable;
}

} // namespace

FolderModel::~FolderModel()
{
    *m_isStopped = true;
}

void FolderModel::setFolder(const QUrl &folder)
{
    if (m_folder == folder)
        return;
    *m_isStopped = true;
    m_isStopped = std::make_shared<std::atomic_bool>(false);
    m_folder = folder;
    m_path = localPath(folder).value_or(QByteArray());
    if (!m_path.isEmpty() && !m_path.endsWith('/'))
        m_path += '/';
    Q_EMIT folderChanged();
    show({}, Reading);
    runThenFinish(
        loadingPool(), this,
        [path = m_path, isStopped = m_isStopped] { return listFolder(path, *isStopped); },
        [this, isStopped = m_isStopped](const FolderListing &listing) {
            if (!*isStopped)
                show(listing.entries, stateAfter(listing.extent));
        });
}

QString FolderModel::folderName() const
{
    const qsizetype end = m_path.size() - 1;
    if (end <= 0)
        return u"Equipo"_s;
    const qsizetype begin = m_path.lastIndexOf('/', end - 1) + 1;
    return shownFileName(m_path.sliced(begin, end - begin));
}

QUrl FolderModel::parentFolder() const
{
    const qsizetype end = m_path.size() - 1;
    if (end <= 0)
        return {};
    const qsizetype slash = m_path.lastIndexOf('/', end - 1);
    return localFileUrl(slash == 0 ? "/" : m_path.first(slash));
}

int FolderModel::rowOf(const QUrl &file) const
{
    const auto path = localPath(file);
    if (!path)
        return -1;
    const auto entry
        = std::find_if(m_entries.begin(), m_entries.end(), [&](const FolderEntry &candidate) {
              return *path == m_path + candidate.name;
          });
    return entry == m_entries.end() ? -1 : int(std::distance(m_entries.begin(), entry));
}

int FolderModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FolderModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const FolderEntry &entry = m_entries.at(index.row());
    switch (role) {
    case NameRole:
        return shownFileName(entry.name);
    case IsFolderRole:
        return entry.isFolder;
    case FileRole:
        return localFileUrl(m_path + entry.name);
    default:
        return {};
    }
}

QHash<int, QByteArray> FolderModel::roleNames() const
{
    return {{NameRole, "name"}, {IsFolderRole, "isFolder"}, {FileRole, "file"}};
}

void FolderModel::show(QList<FolderEntry> entries, State state)
{
    beginResetModel();
    m_entries = std::move(entries);
    m_state = state;
    endResetModel();
    Q_EMIT stateChanged();
}
