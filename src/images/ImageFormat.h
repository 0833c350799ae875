// Images on their way in and on screen: intake, checks, decoding within bounds, previews, and the
// views that show them. Every byte here may come from a stranger.
#pragma once

#include <QByteArray>

#include <optional>

/// The picture formats the program takes. Documents that can name other files or run to many
/// pages (SVG, PDF, …) are none of them.
enum class ImageFormat { Jpeg, Png, Gif, Webp, Bmp, Tiff, Heic };

/// The format that the first bytes announce, whatever the file is called; nothing for any other.
std::optional<ImageFormat> imageFormat(const QByteArray &bytes);

/// The name under which the toolkit knows the format's reader.
QByteArray readerName(ImageFormat format);
