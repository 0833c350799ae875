#pragma once

#include <QIcon>

/// The program's icon in the sizes that window managers show, painted when asked for: a few
/// milliseconds, to be spent after the first frame.
QIcon applicationIcon();
