// Import and display of images: intake, checks, decoding within limits, previews, and the views
// that show them. All bytes here are untrusted.
#pragma once

#include "DecodingCost.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>

#include <array>
#include <optional>
#include <span>

/// Everything about a picture format that the program takes, in one entry of imageFormats().
/// Documents that can name other files or have many pages (SVG, PDF, …) must not be among them.
struct ImageFormat
{
    /// The name of Qt's reader for it, or of one of ours.
    const char *reader;
    /// True for contents that begin as this format does, whatever the file is called.
    bool (*hasSignature)(QByteArrayView bytes);
    /// The media type, then another one under which type databases keep more of its suffixes, or
    /// null.
    std::array<const char *, 2> mediaTypes;
    /// A suffix of file names that some type databases lack or assign to another type, or null.
    const char *suffix;
    /// What decoding `bytes` takes; `size` is the picture's by its reader. Nothing when the header
    /// is invalid.
    std::optional<DecodingCost> (*cost)(const QByteArray &bytes, QSize size);
};

std::span<const ImageFormat> imageFormats();

/// The format that the first bytes announce; null for any other.
const ImageFormat *imageFormat(QByteArrayView bytes);
