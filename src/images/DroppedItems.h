#pragma once

#include "ItemProvider.h"

class QMimeData;

/// The items of a drag: first every file on this machine, then the image data that comes along,
/// then the URLs elsewhere, which load nothing. `mimeData` is borrowed until the caller's event
/// ends, and loading must begin before that.
ItemProviders draggedItems(const QMimeData *mimeData);

/// The items of the clipboard that are no text: every file on this machine, and the image data
/// unless text was copied: office programs add a picture of it. `mimeData` as for a drag.
ItemProviders pastedItems(const QMimeData *mimeData);
