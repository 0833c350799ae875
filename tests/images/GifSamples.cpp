#include "GifSamples.h"

#include <algorithm>

namespace {

constexpr int literalBits = 7;
constexpr int clearCode = 1 << literalBits;
constexpr int endCode = clearCode + 1;

QByteArray little(int number)
{
    return QByteArray(1, char(number)) + char(number >> 8);
}

/// Codes packed from the lowest bit up, in blocks of at most 255 bytes.
class CodeWriter
{
public:
    void put(int code, int bits)
    {
        for (int i = 0; i < bits; ++i, ++m_count) {
            if (m_count % 8 == 0)
                m_bytes.append('\0');
            m_bytes.back() = char(m_bytes.back() | (code >> i & 1) << (m_count % 8));
        }
    }
    QByteArray blocks() const
    {
        constexpr qsizetype largest = 255;
        QByteArray blocks;
        for (qsizetype at = 0; at < m_bytes.size(); at += largest) {
            const QByteArray block = m_bytes.mid(at, largest);
            blocks += char(block.size()) + block;
        }
        return blocks + '\0';
    }

private:
    QByteArray m_bytes;
    qint64 m_count = 0;
};

QByteArray file(const QList<QRgb> &colors, QSize canvas, const QRect &place, GifRows rows,
                int transparent, const QByteArray &blocks)
{
    constexpr char paletteOf128 = char(0x80 | (literalBits - 1));
    constexpr char interlaced = 0x40;
    QByteArray palette;
    for (int i = 0; i < clearCode; ++i) {
        const QRgb color = colors.value(i, qRgb(0, 0, 0));
        palette += QByteArray(1, char(qRed(color))) + char(qGreen(color)) + char(qBlue(color));
    }
    QByteArray bytes = "GIF89a" + little(canvas.width()) + little(canvas.height()) + paletteOf128
        + QByteArray(2, '\0') + palette;
    if (transparent >= 0)
        bytes += QByteArray("\x21\xF9\x04\x01\0\0", 6) + char(transparent) + '\0';
    bytes += "," + little(place.x()) + little(place.y()) + little(place.width())
        + little(place.height()) + (rows == GifRows::Interlaced ? interlaced : '\0')
        + char(literalBits) + blocks + ";";
    return bytes;
}

} // namespace

QByteArray gifOf(const QImage &indexed, QSize canvas, QPoint place, GifRows rows, int transparent)
{
    struct Pass
    {
        int first;
        int step;
    };
    const QList<Pass> passes = rows == GifRows::Interlaced
        ? QList<Pass>{{0, 8}, {4, 8}, {2, 4}, {1, 2}}
        : QList<Pass>{{0, 1}};
    // Reset the decoder before its codes become longer.
    constexpr int codesBetweenClears = 100;
    CodeWriter codes;
    int count = 0;
    for (const Pass pass : passes) {
        for (int y = pass.first; y < indexed.height(); y += pass.step) {
            for (int x = 0; x < indexed.width(); ++x, ++count) {
                if (count % codesBetweenClears == 0)
                    codes.put(clearCode, literalBits + 1);
                codes.put(indexed.pixelIndex(x, y), literalBits + 1);
            }
        }
    }
    codes.put(endCode, literalBits + 1);
    return file(indexed.colorTable(), canvas, QRect(place, indexed.size()), rows, transparent,
                codes.blocks());
}

QByteArray flatGif(QSize size)
{
    constexpr int longestBits = 12;
    constexpr int codeCount = 1 << longestBits;
    CodeWriter codes;
    int bits = literalBits + 1;
    qint64 left = qint64(size.width()) * size.height();
    while (left > 0) {
        codes.put(clearCode, bits);
        bits = literalBits + 1;
        // After the colour itself each code stands for a run that is longer by one than the last.
        int run = 1;
        for (int next = endCode; next < codeCount && left > 0; ++next, ++run) {
            const auto pixels = int(std::min<qint64>(left, run));
            codes.put(pixels == 1 ? 0 : endCode + pixels - 1, bits);
            left -= pixels;
            if (next + 1 == 1 << bits && bits < longestBits)
                ++bits;
        }
    }
    codes.put(endCode, bits);
    return file({qRgb(128, 128, 128)}, size, QRect({}, size), GifRows::FromTheTop, -1,
                codes.blocks());
}
