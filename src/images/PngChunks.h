#pragma once

#include <QByteArray>

/// The file without the chunks that no picture needs: texts, which can unpack to gigabytes, times,
/// animation frames. What is damaged stays for the decoder to refuse.
QByteArray withoutNeedlessChunks(const QByteArray &png);
