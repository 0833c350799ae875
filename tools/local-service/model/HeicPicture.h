#pragma once

#include <QByteArray>
#include <QImage>

/// Whether `bytes` begin as a HEIC photograph does.
bool isHeic(const QByteArray &bytes);

/// The primary picture of a HEIC file, upright; null when it cannot be read or has more than
/// `mostPixels`.
QImage heicPicture(const QByteArray &bytes, qint64 mostPixels);
