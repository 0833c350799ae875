#include "SymbolImage.h"

#include <QCache>
#include <QFile>
#include <QFont>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

struct Key
{
    QString name;
    int extent;
    int weight;
    QRgb color;
    double ratio;

    bool operator==(const Key &) const = default;
};

size_t qHash(const Key &key, size_t seed)
{
    return qHashMulti(seed, key.name, key.extent, key.weight, key.color, key.ratio);
}

QString resourcePath(const QString &name)
{
    return u":/symbols/"_s + name + u".svg"_s;
}

/// Width of a line in units of the grid: 1 when regular, as thick beside text as its stems are.
double lineWidth(int weight)
{
    constexpr double growthPerWeight = 0.8 / (QFont::Bold - QFont::Normal);
    const int heavier = std::clamp<int>(weight, QFont::Normal, QFont::Bold) - QFont::Normal;
    return 1 + growthPerWeight * heavier;
}

/// The drawing with lines of `width`. A drawing made of lines states their width once, at its root;
/// one made of outlines grows by a line around them.
QByteArray withLineWidth(QByteArray drawing, double width)
{
    if (width == 1)
        return drawing;
    const QByteArrayView regular = "stroke-width=\"1\"";
    if (drawing.contains(regular))
        return drawing.replace(regular, "stroke-width=\"" + QByteArray::number(width) + '"');
    return drawing.replace("<svg ",
                           R"(<svg stroke="currentColor" stroke-linejoin="round" stroke-width=")"
                               + QByteArray::number(width - 1) + R"(" )");
}

QImage paintSymbol(const Key &key)
{
    QFile file(resourcePath(key.name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const double width = key.name.endsWith(u".fill") ? 1 : lineWidth(key.weight);
    QSvgRenderer drawing(withLineWidth(file.readAll(), width));
    // Room for what lines at the edge of the grid have grown.
    const double growth = (width - 1) / 2;
    drawing.setViewBox(drawing.viewBoxF().adjusted(-growth, -growth, growth, growth));

    const int pixels = static_cast<int>(std::ceil(key.extent * key.ratio));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor::fromRgba(key.color));
    painter.end();
    image.setDevicePixelRatio(key.ratio);
    return image;
}

} // namespace

int symbolExtent(double points)
{
    constexpr double gridWidth = 1.125; // em
    return static_cast<int>(std::lround(points * gridWidth));
}

bool symbolExists(const QString &name)
{
    return QFile::exists(resourcePath(name));
}

QImage symbolImage(const QString &name, double points, int weight, QColor color, double ratio)
{
    constexpr int imagesKept = 256;
    static QCache<Key, QImage> cache(imagesKept);

    const Key key{.name = name,
                  .extent = symbolExtent(points),
                  .weight = weight,
                  .color = color.rgba(),
                  .ratio = ratio};
    if (const auto *kept = cache.object(key))
        return *kept;
    QImage image = paintSymbol(key);
    cache.insert(key, new QImage(image));
    return image;
}
