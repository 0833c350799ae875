#pragma once

#include "ItemProvider.h"

class QMimeData;

/// The items of a drag: first every file on this machine, then the image data that comes along,
/// then the addresses elsewhere, which load as nothing. `mimeData` is borrowed for as long as the
/// caller's event lasts: what is to be loaded must be asked for before that ends.
ItemProviders draggedItems(const QMimeData *mimeData);

/// The items of the clipboard that are no text: every file on this machine, and the image data
/// unless text was copied, of which office programs add a picture. `mimeData` as for a drag.
ItemProviders pastedItems(const QMimeData *mimeData);
