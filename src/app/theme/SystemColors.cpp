#include "SystemColors.h"

namespace {

QColor rgb(int hex)
{
    return QColor::fromRgb(static_cast<QRgb>(hex));
}

QColor black(double opacity)
{
    return QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity));
}

QColor white(double opacity)
{
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

} // namespace

SystemColors systemColors(ColorScheme scheme)
{
    switch (scheme) {
    case ColorScheme::Light:
        return {.primary = black(0.85),
                .secondary = black(0.50),
                .controlBackground = rgb(0xffffff),
                .textBackground = rgb(0xffffff),
                .separator = black(0.10),
                .windowBackground = rgb(0xececec),
                .orange = rgb(0xff9500),
                .red = rgb(0xff3b30),
                .gray = rgb(0x8e8e93)};
    case ColorScheme::Dark:
        break;
    }
    return {.primary = white(0.85),
            .secondary = white(0.55),
            .controlBackground = rgb(0x1e1e1e),
            .textBackground = rgb(0x1e1e1e),
            .separator = white(0.10),
            .windowBackground = rgb(0x323232),
            .orange = rgb(0xff9f0a),
            .red = rgb(0xff453a),
            .gray = rgb(0x98989d)};
}
