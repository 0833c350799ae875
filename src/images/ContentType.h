#pragma once

#include <QString>

#include <optional>

// The types of contents are named by their MIME names, as the platform's type database has them.

/// The type that files with `extension` (without its dot, in either case) have, if it is known.
std::optional<QString> typeForExtension(const QString &extension);

/// True when `typeIdentifier` names a known type that is a kind of image.
bool conformsToImage(const QString &typeIdentifier);

/// The MIME type to send: the preferred name of a known type, and the default for no type or an
/// unknown one.
QString preferredMimeType(const std::optional<QString> &typeIdentifier);
