// The look: palette, type, symbols, continuous corners and the small controls that every screen
// shares.
#pragma once

#include <QColor>

enum class ColorScheme { Light, Dark };

/// The colours the platform gives an application, in one scheme: the system's own on macOS, a table
/// of the same names elsewhere.
struct SystemColors
{
    QColor primary; ///< text and symbols; translucent, so that it takes on what lies below
    QColor secondary;
    QColor controlBackground;
    QColor textBackground;
    QColor separator;
    QColor windowBackground; ///< behind sheets and alerts
    QColor orange;
    QColor red;
    QColor gray;
};

SystemColors systemColors(ColorScheme scheme);
