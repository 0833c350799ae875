#include "SampleImages.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QtEndian>

#include <array>

namespace {

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(sizeof(number), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

QByteArray littleEndian(quint32 number)
{
    QByteArray bytes(sizeof(number), '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

/// EXIF data with nothing but an orientation.
QByteArray exifData(int orientation)
{
    return QByteArray::fromHex("4d4d002a00000008" // Header, first directory at 8
                               "0001" // One entry
                               "0112000300000001") // Orientation, one short
        + char(0) + char(orientation) + QByteArray(6, '\0');
}

quint32 checkSum(const QByteArray &bytes)
{
    constexpr quint32 polynomial = 0xEDB88320;
    quint32 sum = ~0U;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ (polynomial & (0U - (sum & 1U)));
    }
    return ~sum;
}

QByteArray written(const QImage &image, const QByteArray &format, int quality, bool progressive)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    return writer.write(image) ? buffer.data() : QByteArray();
}

} // namespace

QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    const int x = size.width() / 2;
    const int y = size.height() / 2;
    QPainter painter(&image);
    painter.fillRect(0, 0, x, y, Qt::red);
    painter.fillRect(x, 0, size.width() - x, y, Qt::green);
    painter.fillRect(0, y, x, size.height() - y, Qt::blue);
    painter.fillRect(x, y, size.width() - x, size.height() - y, Qt::yellow);
    return image;
}

bool showsQuarters(const QImage &image)
{
    constexpr int tolerance = 24;
    const std::array<QRgb, 4> expected{0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFF00};
    for (int i = 0; i < 4; ++i) {
        const QRgb seen = image.pixel(image.width() * (i % 2 * 2 + 1) / 4,
                                      image.height() * (i / 2 * 2 + 1) / 4);
        if (std::abs(qRed(seen) - qRed(expected[i])) > tolerance
            || std::abs(qGreen(seen) - qGreen(expected[i])) > tolerance
            || std::abs(qBlue(seen) - qBlue(expected[i])) > tolerance || qAlpha(seen) != 255)
            return false;
    }
    return true;
}

QByteArray encoded(const QImage &image, const QByteArray &format, int quality)
{
    return written(image, format, quality, false);
}

QByteArray encodedProgressively(const QImage &image)
{
    return written(image, "jpeg", 90, true);
}

QImage storedWithOrientation(const QImage &upright, int orientation)
{
    const int right = upright.width() - 1;
    const int bottom = upright.height() - 1;
    // Where a stored row and column belong, as the EXIF standard defines each value.
    const auto place = [&](int row, int column) -> QPoint {
        switch (orientation) {
        case 1:
            return {column, row};
        case 2:
            return {right - column, row};
        case 3:
            return {right - column, bottom - row};
        case 4:
            return {column, bottom - row};
        case 5:
            return {row, column};
        case 6:
            return {right - row, column};
        case 7:
            return {right - row, bottom - column};
        default:
            return {row, bottom - column};
        }
    };
    const bool isLying = orientation >= 5;
    QImage stored(isLying ? upright.size().transposed() : upright.size(), upright.format());
    for (int row = 0; row < stored.height(); ++row) {
        for (int column = 0; column < stored.width(); ++column)
            stored.setPixel(column, row, upright.pixel(place(row, column)));
    }
    return stored;
}

QByteArray withExifOrientation(const QByteArray &jpeg, int orientation)
{
    const QByteArray payload = QByteArray("Exif\0\0", 6) + exifData(orientation);
    const QByteArray length = bigEndian(quint32(payload.size()) + 2).last(2);
    return jpeg.first(2) + "\xFF\xE1" + length + payload + jpeg.sliced(2);
}

QByteArray pngWithExifOrientation(const QByteArray &png, int orientation)
{
    return withPngChunk(png, pngChunk("eXIf", exifData(orientation)));
}

QByteArray webpWithExifOrientation(const QByteArray &webp, QSize size, int orientation)
{
    constexpr qsizetype headerEnd = 12;
    const QByteArray hasExif("\x08\0\0\0", 4);
    const QByteArray exif = exifData(orientation);
    const QByteArray chunks = "VP8X" + littleEndian(10) + hasExif
        + littleEndian(quint32(size.width()) - 1).first(3)
        + littleEndian(quint32(size.height()) - 1).first(3) + webp.sliced(headerEnd) + "EXIF"
        + littleEndian(quint32(exif.size())) + exif;
    return "RIFF" + littleEndian(quint32(chunks.size()) + 4) + "WEBP" + chunks;
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + type + data + bigEndian(checkSum(type + data));
}

QByteArray withPngChunk(const QByteArray &png, const QByteArray &chunk)
{
    constexpr qsizetype headerEnd = 33;
    return png.first(headerEnd) + chunk + png.sliced(headerEnd);
}

QByteArray flatPng(QSize size, const PngKind &kind)
{
    const int bytesPerRow = kind.bytesPerRow > 0 ? kind.bytesPerRow : (size.width() + 7) / 8;
    // Interlaced, there are nearly twice as many rows, each with a byte for its filter.
    const int bytesBesides = kind.interlaced ? 3 : 1;
    return pngOf(size, kind,
                 QByteArray(qsizetype(size.height()) * (bytesPerRow + bytesBesides), '\0'));
}

QByteArray pngOf(QSize size, const PngKind &kind, const QByteArray &rows)
{
    const QByteArray header = bigEndian(quint32(size.width())) + bigEndian(quint32(size.height()))
        + char(kind.bitDepth) + char(kind.colorType) + char(0) + char(0) + char(kind.interlaced);
    // What qCompress() puts before the stream is its length, which PNG has no use for.
    const QByteArray pixels = qCompress(rows, 9).sliced(4);
    return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", header)
        + (kind.colorType == 3 ? pngChunk("PLTE", QByteArray(768, '\x80')) : QByteArray())
        + pngChunk("IDAT", pixels) + pngChunk("IEND", {});
}

QByteArray cmykJpeg()
{
    return QByteArray::fromBase64(
        "/9j/7gAOQWRvYmUAZAAAAAAC/"
        "9sAQwANCQoLCggNCwoLDg4NDxMgFRMSEhMnHB4XIC4pMTAuKS0sMzpKPjM2RjcsLUBX"
        "QUZMTlJTUjI+WmFaUGBKUVJP/"
        "9sAQwEODg4TERMmFRUmTzUtNU9PT09PT09PT09PT09PT09PT09PT09PT09PT09PT09P"
        "T09PT09PT09PT09PT09PT09P/8AAFAgAFAAoBAEiAAIRAQMRAQQiAP/EABcAAQEBAQAAAAAAAAAAAAAAAAAFAgb/"
        "xAAf"
        "EAABAgYDAAAAAAAAAAAAAAAAAgMBEhQVUVITYWL/xAAWAQEBAQAAAAAAAAAAAAAAAAAABgX/"
        "xAAbEQACAQUAAAAAAAAA"
        "AAAAAAAAAQMREhUWUf/"
        "aAA4EAQACEQMRBAAAPwC3ydjk7N0CsxFArMTH2BkVi5+HY3n0Lz6IVud2ULc7soxydjk7N0Cs"
        "xFArMRsDGLn4Xbz6F59EK3O7KFud2UY5OwboFZiBsDGLn4Xbz6BCtzuygXJE4EicAEfUvrUdpStaila1AEicCROABU"
        "Wo"
        "UrWopWtQBInAAFRahStagA//2Q==");
}

QByteArray interlacedPng()
{
    return QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAwAAAAICAIAAAE1gbkwAAAAKklEQVQY02P8z8DA"
                                  "wMDA8J+BgRHKRGYxMWCKMWBKkqiK"
                                  "OCEsZhGlj5aKABKVBxApcEkyAAAAAElFTkSuQmCC");
}

QByteArray animatedGif()
{
    return QByteArray::fromBase64("R0lGODlhDAAIAPAAAP8AAAAAACH5BAAAAAAAIf8LTkVUU0NBUEUyLjADAQAAACwA"
                                  "AAAADAAIAAACCISPqcvtD2MqACH5"
                                  "BAAAAAAALAAAAAAMAAgAgAAA/wAAAAIIhI+py+0PYyoAOw==");
}
