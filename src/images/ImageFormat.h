// Images on their way in and on screen: intake, checks, decoding within bounds, previews, and the
// views that show them. Every byte here may come from a stranger.
#pragma once

#include "DecodingCost.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>

#include <array>
#include <optional>
#include <span>

/// All there is to know about a picture format that the program takes. Documents that can name
/// other files or run to many pages (SVG, PDF, …) are none of them.
struct ImageFormat
{
    /// The name of Qt's reader for it, or of one of ours.
    const char *reader;
    /// True for contents that begin as this format does, whatever the file is called.
    bool (*hasSignature)(QByteArrayView bytes);
    /// The media type contents go by; then one under which type databases keep more of its
    /// suffixes, where there is one.
    std::array<const char *, 2> mediaTypes;
    /// A suffix of file names that not every type database knows, or that some of them take for
    /// another type. Null where there is none.
    const char *suffix;
    /// What reading `bytes` takes; `size` is what the reader says the picture has. Nothing when the
    /// header makes no sense.
    std::optional<DecodingCost> (*cost)(const QByteArray &bytes, QSize size);
};

std::span<const ImageFormat> imageFormats();

/// The format that the first bytes announce; null for any other.
const ImageFormat *imageFormat(QByteArrayView bytes);
