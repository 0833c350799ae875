#include "LocalFile.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace {

/// Opens `file` for reading if it is a regular one. Asking after the opening leaves nobody the time
/// to put something else in its place.
bool openRegular(QFile &file)
{
#ifdef Q_OS_UNIX
    const QByteArray path = QFile::encodeName(file.fileName());
    const int descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status
    { };
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
                     QFileDevice::AutoCloseHandle))
        return true;
    ::close(descriptor);
    return false;
#else
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
#endif
}

} // namespace

std::optional<QString> localPath(const QUrl &url)
{
    const bool isHere = url.host().isEmpty() || url.host() == "localhost"_L1;
    if (!url.isLocalFile() || !isHere || url.path().isEmpty())
        return std::nullopt;
    return QUrl::fromLocalFile(url.path(QUrl::FullyDecoded)).toLocalFile();
}

std::optional<QByteArray> readLocalFile(const QUrl &url, qint64 limit)
{
    const auto path = localPath(url);
    if (!path || path->contains(QChar(u'\0')))
        return std::nullopt;
    QFile file(*path);
    if (!openRegular(file))
        return std::nullopt;

    QByteArray bytes;
    while (bytes.size() < limit) {
        const QByteArray piece = file.read(limit - bytes.size());
        if (piece.isEmpty())
            break;
        bytes += piece;
    }
    return file.error() == QFileDevice::NoError ? std::optional(bytes) : std::nullopt;
}
