#pragma once

#include <QByteArray>

// Samples that need no installed encoder.

/// 64 × 48, quarters().
QByteArray heicPhotograph();
/// The same, to be rotated counterclockwise by 90°: 48 × 64.
QByteArray heicTurnedPhotograph();
/// quarters() at half opacity.
QByteArray heicWithAlpha();
/// quarters() in 10 bits a sample.
QByteArray heicWithTenBits();
/// 64 × 48, gray 100.
QByteArray heicInGray();
