#include "ApplicationIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <array>

using namespace Qt::StringLiterals;

QIcon applicationIcon()
{
    constexpr std::array sides{16, 32, 48, 128, 256};

    QSvgRenderer drawing(u":/brand/ar.aulora.AuloraIA.svg"_s);
    QIcon icon;
    for (const int side : sides) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
