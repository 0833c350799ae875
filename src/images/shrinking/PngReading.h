#pragma once

#include "ImageHeader.h"

#include <QByteArrayView>
#include <QImage>

#include <optional>

std::optional<ImageHeader> pngHeader(QByteArrayView png);

/// The picture at `size`, with its colour space. Rows are shrunk as they come, whether from the top
/// to the bottom or interlaced, and nothing behind the last of them is read. Null for damaged
/// files.
QImage decodedPng(QByteArrayView png, QSize size);
