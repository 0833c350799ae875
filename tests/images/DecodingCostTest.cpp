#include "GifSamples.h"
#include "HostileImages.h"
#include "ImageDecoder.h"
#include "ImageFormat.h"
#include "ImageLimits.h"
#include "ResourceUse.h"
#include "SampleImages.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>
#include <QTest>
#include <QtEndian>

#include <cstdio>
#include <functional>

namespace {

constexpr qint64 bytesPerMegabyte = 1 << 20;

QImage vast(QSize size, QImage::Format format)
{
    QImage image(size, format);
    image.fill(Qt::darkCyan);
    return image;
}

/// A compressed TIFF: an uncompressed one of this size would exceed the limit for files.
QByteArray packedTiff(const QImage &image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "tiff");
    writer.setCompression(1);
    return writer.write(image) ? buffer.data() : QByteArray();
}

/// A compressed gray BMP of that size: every line is one run that is shorter than the line.
QByteArray packedBmp(QSize size)
{
    constexpr qsizetype pixelsOffset = 10;
    constexpr qsizetype sizeOffset = 18;
    constexpr qsizetype compressionOffset = 30;
    QByteArray bytes = encoded(vast({4, 4}, QImage::Format_Grayscale8), "bmp");
    bytes.truncate(qFromLittleEndian<quint32>(bytes.constData() + pixelsOffset));
    qToLittleEndian(quint32(size.width()), bytes.data() + sizeOffset);
    qToLittleEndian(quint32(size.height()), bytes.data() + sizeOffset + 4);
    qToLittleEndian(quint32(1), bytes.data() + compressionOffset);
    return bytes + QByteArray("\xFF\x01\0\0", 4).repeated(size.height()) + QByteArray("\0\1", 2);
}

} // namespace

/// The estimate by which images are refused, against the memory that decoding them takes, for each
/// format at its worst.
class DecodingCostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!canMeasureMemory())
            QSKIP("this system, or this build, does not tell the memory that is used");
        // Load now what is loaded once for the whole process, so that it is not measured.
        for (const QByteArray &bytes : soundImages())
            QVERIFY(decodeImage(bytes, maximumPreviewSide));
    }

    void isWhatDecodingTakes_data()
    {
        QTest::addColumn<std::function<QByteArray()>>("file");
        QTest::addColumn<QSize>("size");
        const auto add = [](const char *name, QSize size, std::function<QByteArray()> file) {
            QTest::newRow(name) << std::move(file) << size;
        };
        const QSize large(10'000, 10'000);
        const QSize xRay(5'000, 6'000);
        const QSize photograph(6'000, 4'000);

        add("baseline jpeg", photograph,
            [=] { return encoded(vast(photograph, QImage::Format_RGB32), "jpeg"); });
        add("progressive jpeg", photograph,
            [=] { return encodedProgressively(vast(photograph, QImage::Format_RGB32)); });
        const QSize wide(900'000, 60);
        add("png of the widest pixels", wide, [=] {
            return flatPng(wide, {.bitDepth = 16, .colorType = 6, .bytesPerRow = 7'200'000});
        });
        add("png of true colours", large,
            [=] { return flatPng(large, {.bitDepth = 8, .colorType = 2, .bytesPerRow = 30'000}); });
        add("interlaced png", xRay, [=] {
            return flatPng(
                xRay, {.bitDepth = 16, .colorType = 0, .bytesPerRow = 10'000, .interlaced = true});
        });
        add("gif", large, [=] { return flatGif(large); });
        add("lossy webp", photograph,
            [=] { return encoded(vast(photograph, QImage::Format_RGB32), "webp", 75); });
        add("lossless webp", {8'000, 6'000}, [] { return flatWebp({8'000, 6'000}); });
        add("lossy webp with transparency", {4'000, 3'000}, [] {
            QImage image = quarters({4'000, 3'000}).convertToFormat(QImage::Format_ARGB32);
            for (int y = 0; y < image.height(); ++y) {
                auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
                for (int x = 0; x < image.width(); ++x)
                    line[x] = qRgba(90, 90, 90, (x * 7 + y * y) & 0xFF);
            }
            return encoded(image, "webp", 60);
        });
        const QSize unpacked(2'000, 1'500); // No larger one is within the limit of files.
        add("bmp of true colours", unpacked,
            [=] { return encoded(vast(unpacked, QImage::Format_RGB32), "bmp"); });
        add("packed bmp", large, [=] { return packedBmp(large); });
        add("tiff of true colours", xRay,
            [=] { return packedTiff(vast(xRay, QImage::Format_RGB32)); });
        add("gray tiff", xRay, [=] { return packedTiff(vast(xRay, QImage::Format_Grayscale8)); });
        add("16-bit gray tiff", xRay,
            [=] { return packedTiff(vast(xRay, QImage::Format_Grayscale16)); });
        add("16-bit tiff", {5'000, 4'000},
            [] { return packedTiff(vast({5'000, 4'000}, QImage::Format_RGBX64)); });
        add("tiff of floating-point numbers", {3'000, 3'000},
            [] { return packedTiff(vast({3'000, 3'000}, QImage::Format_RGBX32FPx4)); });
    }
    void isWhatDecodingTakes()
    {
        QFETCH(std::function<QByteArray()>, file);
        QFETCH(QSize, size);
        const QByteArray bytes = file();
        QVERIFY(!bytes.isEmpty() && bytes.size() <= maximumImageBytes);
        const ImageFormat *format = imageFormat(bytes);
        QVERIFY(format);
        const auto cost = format->cost(bytes, size);
        QVERIFY(cost);
        QVERIFY2(cost->bytes <= maximumDecodingBytes, QByteArray::number(cost->bytes).constData());

        resetMemoryPeak();
        const auto image = decodeImage(bytes, maximumPreviewSide);
        const qint64 measured = memoryGrowth();
        const bool isRead = image.has_value();
        const qint64 estimate = cost->bytes / bytesPerMegabyte;
        // The reader's copy of the file, the sums of AreaAverage, and the decoder with its tables.
        const qint64 besides = bytes.size() / bytesPerMegabyte + 24;
        std::printf("%-32s %s, estimated %lld MB, measured %lld MB\n", QTest::currentDataTag(),
                    isRead ? "read" : "not read", (long long)estimate, (long long)measured);
        QVERIFY2(measured <= estimate + besides, QByteArray::number(measured).constData());
        QVERIFY2(estimate <= measured * 3 / 2 + besides, QByteArray::number(measured).constData());
    }
};

QTEST_GUILESS_MAIN(DecodingCostTest)
#include "DecodingCostTest.moc"
