#pragma once

#include <QByteArray>

/// Whether Qt's `format` holds pixels and nothing else: others name files that a reader
/// would open.
bool isRasterFormat(const QByteArray &format);
