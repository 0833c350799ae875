#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

/// The path of the file on this machine that `url` names, as the file system has it: names need not
/// be UTF-8. Nothing for an address elsewhere.
std::optional<QByteArray> localPath(const QUrl &url);

/// The URL of the file on this machine at `path`, which is absolute; the inverse of localPath().
QUrl localFileUrl(const QByteArray &path);

/// The bytes of a regular file on this machine: all of them, or `limit` when it has more. Nothing
/// when it cannot be read or is no regular file; a pipe or a device is neither waited for nor read.
std::optional<QByteArray> readLocalFile(const QUrl &url, qint64 limit);
