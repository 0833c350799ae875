// macOS: the system's own colours, so that a person's accessibility settings hold here, too.
#include "SystemColors.h"

#import <AppKit/AppKit.h>

namespace {

QColor fixedColor(NSColor *color)
{
    NSColor *rgb = [color colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
    return QColor::fromRgbF(static_cast<float>(rgb.redComponent),
                            static_cast<float>(rgb.greenComponent),
                            static_cast<float>(rgb.blueComponent),
                            static_cast<float>(rgb.alphaComponent));
}

} // namespace

SystemColors systemColors(ColorScheme scheme)
{
    // The scheme may be another one than the system's, so the colours are asked for within it.
    NSAppearance *appearance =
        [NSAppearance appearanceNamed:scheme == ColorScheme::Dark ? NSAppearanceNameDarkAqua
                                                                  : NSAppearanceNameAqua];
    __block SystemColors colors;
    [appearance performAsCurrentDrawingAppearance:^{
      colors = {.primary = fixedColor(NSColor.labelColor),
                .secondary = fixedColor(NSColor.secondaryLabelColor),
                .controlBackground = fixedColor(NSColor.controlBackgroundColor),
                .textBackground = fixedColor(NSColor.textBackgroundColor),
                .separator = fixedColor(NSColor.separatorColor),
                .windowBackground = fixedColor(NSColor.windowBackgroundColor),
                .orange = fixedColor(NSColor.systemOrangeColor),
                .red = fixedColor(NSColor.systemRedColor),
                .gray = fixedColor(NSColor.systemGrayColor)};
    }];
    return colors;
}
