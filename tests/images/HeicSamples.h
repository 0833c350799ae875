#pragma once

#include <QByteArray>

// Samples that no encoder need be installed for.

/// 64 × 48, quarters().
QByteArray heicPhotograph();
/// The same, to be turned a quarter to the left: 48 × 64.
QByteArray heicTurnedPhotograph();
/// quarters() at half opacity.
QByteArray heicWithAlpha();
/// quarters() in 10 bits a sample.
QByteArray heicWithTenBits();
/// 64 × 48, gray 100.
QByteArray heicInGray();
