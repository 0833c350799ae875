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

/// Opens the file for reading if it is a regular one. The check follows the opening, so that the
/// file cannot be replaced between the two.
bool openRegular(QFile &file, const QByteArray &path)
{
#ifdef Q_OS_UNIX
    const int descriptor = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    struct stat status{};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
                     QFileDevice::AutoCloseHandle))
        return true;
    ::close(descriptor);
    return false;
#else
    file.setFileName(QFile::decodeName(path));
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
#endif
}

} // namespace

std::optional<QByteArray> localPath(const QUrl &url)
{
    // QUrl keeps host names in lower case.
    const QString host = url.host();
    const bool isHere
        = host.isEmpty() || host == "localhost"_L1 || host == QSysInfo::machineHostName().toLower();
    if (!url.isLocalFile() || !isHere || url.path().isEmpty())
        return std::nullopt;
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
}

QUrl localFileUrl(const QByteArray &path)
{
    return QUrl::fromEncoded("file://" + path.toPercentEncoding("/"));
}

std::optional<QByteArray> readLocalFile(const QUrl &url, qint64 limit)
{
    const auto path = localPath(url);
    if (!path || path->contains('\0'))
        return std::nullopt;
    QFile file;
    if (!openRegular(file, *path))
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
