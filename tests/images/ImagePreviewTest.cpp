#include "ImagePreview.h"

#include "GifSamples.h"
#include "HeicSamples.h"
#include "ImageDecoder.h"
#include "ImageFormat.h"
#include "ImageLimits.h"
#include "JpegLayout.h"
#include "SampleImages.h"

#include <QColorSpace>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <array>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

QImage previewOf(const QByteArray &bytes)
{
    const auto preview = makePreviewData(bytes);
    return preview ? QImage::fromData(*preview, "jpeg") : QImage();
}

QImage filled(QSize size, QImage::Format format, const QColor &color)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

bool isNear(QRgb seen, const QColor &expected)
{
    constexpr int tolerance = 12;
    return std::abs(qRed(seen) - expected.red()) <= tolerance
        && std::abs(qGreen(seen) - expected.green()) <= tolerance
        && std::abs(qBlue(seen) - expected.blue()) <= tolerance;
}

} // namespace

class ImagePreviewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reducesButNeverEnlarges_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("expected");

        QTest::newRow("3000 x 1500") << QSize(3000, 1500) << QSize(700, 350);
        QTest::newRow("1400 x 700") << QSize(1400, 700) << QSize(700, 350);
        QTest::newRow("640 x 480") << QSize(640, 480) << QSize(640, 480);
        QTest::newRow("300 x 300") << QSize(300, 300) << QSize(300, 300);
        QTest::newRow("700 x 700") << QSize(700, 700) << QSize(700, 700);
        QTest::newRow("701 x 350") << QSize(701, 350) << QSize(700, 350);
        QTest::newRow("portrait") << QSize(1000, 2000) << QSize(350, 700);
        QTest::newRow("one pixel") << QSize(1, 1) << QSize(1, 1);
        QTest::newRow("thread") << QSize(9000, 3) << QSize(700, 1);
    }
    void reducesButNeverEnlarges()
    {
        QFETCH(QSize, size);
        QFETCH(QSize, expected);
        for (const char *format : {"jpeg", "png", "webp"}) {
            const QByteArray bytes = encoded(quarters(size), format);
            QVERIFY2(!bytes.isEmpty(), format);
            QVERIFY2(previewOf(bytes).size() == expected, format);
        }
    }

    void isBaselineJpegWhateverTheSource_data()
    {
        QTest::addColumn<QByteArray>("bytes");

        const QImage picture = quarters({320, 200});
        QTest::newRow("jpeg") << encoded(picture, "jpeg");
        QTest::newRow("progressive jpeg") << encodedProgressively(picture);
        QTest::newRow("png") << encoded(picture, "png");
        QTest::newRow("webp") << encoded(picture, "webp");
        QTest::newRow("lossless webp") << encoded(picture, "webp", 100);
        QTest::newRow("bmp") << encoded(picture, "bmp");
        QTest::newRow("tiff") << encoded(picture, "tiff");
        QTest::newRow("palette png")
            << encoded(picture.convertToFormat(QImage::Format_Indexed8), "png");
        QTest::newRow("palette bmp")
            << encoded(picture.convertToFormat(QImage::Format_Indexed8), "bmp");
        QTest::newRow("16-bit png")
            << encoded(picture.convertToFormat(QImage::Format_RGBX64), "png");
        QTest::newRow("16-bit png with alpha")
            << encoded(picture.convertToFormat(QImage::Format_RGBA64), "png");
        QTest::newRow("16-bit tiff")
            << encoded(picture.convertToFormat(QImage::Format_RGBX64), "tiff");
    }
    void isBaselineJpegWhateverTheSource()
    {
        QFETCH(QByteArray, bytes);
        const auto preview = makePreviewData(bytes);
        QVERIFY(preview);
        QCOMPARE(imageFormat(*preview)->reader, "jpeg");
        QVERIFY(*preview != bytes);
        QVERIFY(preview->contains("\xFF\xC0")); // Baseline start of frame
        QVERIFY(!preview->contains("\xFF\xC2")); // Progressive start of frame
        QCOMPARE(jpegLayout(*preview)->scans, 1);
        QVERIFY(showsQuarters(QImage::fromData(*preview)));
    }

    void readsOddKinds_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QColor>("color");

        const QColor gray(100, 100, 100);
        const QSize size(50, 30);
        QTest::newRow("gray jpeg")
            << encoded(filled(size, QImage::Format_Grayscale8, gray), "jpeg") << size << gray;
        QTest::newRow("gray png") << encoded(filled(size, QImage::Format_Grayscale8, gray), "png")
                                  << size << gray;
        QTest::newRow("16-bit gray png")
            << encoded(filled(size, QImage::Format_Grayscale16, gray), "png") << size << gray;
        QTest::newRow("black and white png") << encoded(
            filled(size, QImage::Format_RGB32, Qt::white).convertToFormat(QImage::Format_Mono),
            "png") << size << QColor(Qt::white);
        QTest::newRow("black and white tiff") << encoded(
            filled(size, QImage::Format_RGB32, Qt::white).convertToFormat(QImage::Format_Mono),
            "tiff") << size << QColor(Qt::white);
        QTest::newRow("16-bit gray tiff")
            << encoded(filled(size, QImage::Format_Grayscale16, gray), "tiff") << size << gray;
        QTest::newRow("first frame of an animation")
            << animatedGif() << QSize(12, 8) << QColor(Qt::red);
        QTest::newRow("interlaced png") << interlacedPng() << QSize(12, 8) << QColor(Qt::red);
    }
    void readsOddKinds()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QSize, size);
        QFETCH(QColor, color);
        const QImage preview = previewOf(bytes);
        QCOMPARE(preview.size(), size);
        QVERIFY(isNear(preview.pixel(size.width() / 2, size.height() / 2), color));
    }

    void readsFourInks()
    {
        const QImage preview = previewOf(cmykJpeg());
        QCOMPARE(preview.size(), QSize(40, 20));
        // The sample runs from red at the top to blue at the bottom.
        QVERIFY(qRed(preview.pixel(20, 1)) > 180 && qBlue(preview.pixel(20, 1)) < 90);
        QVERIFY(qBlue(preview.pixel(20, 18)) > 130 && qRed(preview.pixel(20, 18)) < 90);
    }

    void putsWhiteUnderTransparency_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QColor>("expected");

        const QSize size(80, 60);
        const QColor halfRed(255, 0, 0, 128);
        for (const char *format : {"png", "webp", "tiff"}) {
            QTest::addRow("clear %s", format)
                << encoded(filled(size, QImage::Format_ARGB32, Qt::transparent), format)
                << QColor(Qt::white);
            QTest::addRow("half red %s", format)
                << encoded(filled(size, QImage::Format_ARGB32, halfRed), format)
                << QColor(255, 127, 127);
        }
        QTest::newRow("large half red png")
            << encoded(filled({1500, 900}, QImage::Format_ARGB32, halfRed), "png")
            << QColor(255, 127, 127);
        QTest::newRow("large half red 16-bit png")
            << encoded(filled({1500, 900}, QImage::Format_RGBA64, halfRed), "png")
            << QColor(255, 127, 127);
    }
    void putsWhiteUnderTransparency()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QColor, expected);
        const QImage preview = previewOf(bytes);
        QVERIFY(!preview.isNull());
        QVERIFY(isNear(preview.pixel(preview.rect().center()), expected));
    }

    void turnsUpright_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QSize>("expected");

        for (const QSize size : {QSize(120, 80), QSize(720, 480)}) {
            const QSize expected = size.width() > 700 ? QSize(700, 467) : size;
            for (int orientation = 1; orientation <= 8; ++orientation) {
                const QImage stored = storedWithOrientation(quarters(size), orientation);
                QTest::addRow("jpeg %d of %d", orientation, size.width())
                    << withExifOrientation(encoded(stored, "jpeg"), orientation) << expected;
                QTest::addRow("progressive jpeg %d of %d", orientation, size.width())
                    << withExifOrientation(encodedProgressively(stored), orientation) << expected;
                QTest::addRow("png %d of %d", orientation, size.width())
                    << pngWithExifOrientation(encoded(stored, "png"), orientation) << expected;
                QTest::addRow("webp %d of %d", orientation, size.width())
                    << webpWithExifOrientation(encoded(stored, "webp"), stored.size(), orientation)
                    << expected;
            }
        }
        for (const int nonsense : {0, 9, 255}) {
            QTest::addRow("jpeg %d", nonsense)
                << withExifOrientation(encoded(quarters({120, 80}), "jpeg"), nonsense)
                << QSize(120, 80);
            QTest::addRow("png %d", nonsense)
                << pngWithExifOrientation(encoded(quarters({120, 80}), "png"), nonsense)
                << QSize(120, 80);
        }
    }
    void turnsUpright()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QSize, expected);
        const QImage preview = previewOf(bytes);
        QCOMPARE(preview.size(), expected);
        QVERIFY(showsQuarters(preview));
    }

    void countsEveryPixel_data()
    {
        QTest::addColumn<QByteArray>("bytes");

        // Black and white lines, one pixel wide, on more than 700 pixels: an average is gray
        // everywhere, and leaving pixels out makes bands.
        const QSize size(1100, 900);
        QImage lines(size, QImage::Format_Grayscale8);
        for (int y = 0; y < size.height(); ++y)
            std::memset(lines.scanLine(y), y % 2 == 0 ? 0 : 255, size_t(size.width()));
        const QImage columns = lines.transformed(QTransform().rotate(90));
        const QImage clear = filled(size, QImage::Format_ARGB32, QColor(0, 0, 0, 128));
        QTest::newRow("lines in a png") << encoded(lines, "png");
        QTest::newRow("columns in a png") << encoded(columns, "png");
        QTest::newRow("lines in a lossless webp") << encoded(lines, "webp", 100);
        QTest::newRow("lines in a tiff") << encoded(lines, "tiff");
        QImage indexed(size, QImage::Format_Indexed8);
        indexed.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
        for (int y = 0; y < size.height(); ++y)
            std::memset(indexed.scanLine(y), y % 2, size_t(size.width()));
        QTest::newRow("lines in a gif") << gifOf(indexed, size, {}, GifRows::FromTheTop);
        QTest::newRow("lines in a palette bmp") << encoded(indexed, "bmp");
        QTest::newRow("lines in an interlaced gif")
            << gifOf(indexed, size, {}, GifRows::Interlaced);
        QTest::newRow("half clear black png") << encoded(clear, "png");
        QTest::newRow("half clear black webp") << encoded(clear, "webp");
        QTest::newRow("half clear black lossless webp") << encoded(clear, "webp", 100);
    }
    void countsEveryPixel()
    {
        QFETCH(QByteArray, bytes);
        const auto picture = makePreviewData(bytes);
        QVERIFY(picture);
        const QImage preview = QImage::fromData(*picture);
        QCOMPARE(std::max(preview.width(), preview.height()), 700);
        for (int y = 4; y < preview.height() - 4; ++y) {
            // Three target rows hold whole numbers of lines, near enough: 1100 to 700.
            const int gray = (qGray(preview.pixel(preview.width() / 2, y))
                              + qGray(preview.pixel(preview.width() / 2 + 1, y + 1))
                              + qGray(preview.pixel(preview.width() / 2 + 2, y + 2)))
                / 3;
            QVERIFY2(gray > 85 && gray < 170, QByteArray::number(gray).constData());
        }
    }

    void keepsAnEvenColour()
    {
        const QImage even = filled({1103, 907}, QImage::Format_RGB32, QColor(10, 100, 200));
        for (const char *format : {"png", "bmp", "tiff"}) {
            const auto picture = decodeImage(encoded(even, format), maximumPreviewSide);
            QVERIFY2(picture, format);
            for (int y = 0; y < picture->height(); ++y) {
                for (int x = 0; x < picture->width(); ++x)
                    QCOMPARE(picture->pixel(x, y), qRgb(10, 100, 200));
            }
        }
    }

    void doesNotMixColoursOfTransparentPixelsIn_data()
    {
        QTest::addColumn<QByteArray>("bytes");

        // Columns of opaque red and of clear green: red over white is left.
        QImage columns({1400, 900}, QImage::Format_ARGB32);
        for (int y = 0; y < columns.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(columns.scanLine(y));
            for (int x = 0; x < columns.width(); ++x)
                line[x] = x % 2 == 0 ? qRgba(255, 0, 0, 255) : qRgba(0, 255, 0, 0);
        }
        QTest::newRow("png") << encoded(columns, "png");
        QTest::newRow("lossless webp") << encoded(columns, "webp", 100);
        QImage indexed(columns.size(), QImage::Format_Indexed8);
        indexed.setColorTable({qRgb(255, 0, 0), qRgb(0, 255, 0)});
        for (int y = 0; y < indexed.height(); ++y) {
            for (int x = 0; x < indexed.width(); ++x)
                indexed.scanLine(y)[x] = uchar(x % 2);
        }
        QTest::newRow("gif") << gifOf(indexed, indexed.size(), {}, GifRows::FromTheTop, 1);
    }
    void doesNotMixColoursOfTransparentPixelsIn()
    {
        QFETCH(QByteArray, bytes);
        const QImage preview = previewOf(bytes);
        QCOMPARE(preview.size(), QSize(700, 450));
        QVERIFY(isNear(preview.pixel(350, 225), QColor(255, 127, 127)));
    }

    void putsAGifOnItsCanvas_data()
    {
        QTest::addColumn<GifRows>("rows");
        QTest::addColumn<QSize>("canvas");
        QTest::addColumn<QPoint>("place");
        for (const QSize canvas : {QSize(200, 100), QSize(2000, 1000)}) {
            const QPoint place(canvas.width() / 2, canvas.height() / 2);
            QTest::addRow("from the top, %d", canvas.width())
                << GifRows::FromTheTop << canvas << place;
            QTest::addRow("interlaced, %d", canvas.width())
                << GifRows::Interlaced << canvas << place;
        }
        QTest::newRow("reaching over the edge")
            << GifRows::FromTheTop << QSize(200, 100) << QPoint(150, 75);
        QTest::newRow("off the canvas")
            << GifRows::FromTheTop << QSize(200, 100) << QPoint(300, 200);
    }
    void putsAGifOnItsCanvas()
    {
        QFETCH(GifRows, rows);
        QFETCH(QSize, canvas);
        QFETCH(QPoint, place);
        // As large as half of the canvas: red above, blue below.
        QImage picture(canvas / 2, QImage::Format_Indexed8);
        picture.setColorTable({qRgb(255, 0, 0), qRgb(0, 0, 255)});
        for (int y = 0; y < picture.height(); ++y)
            std::memset(picture.scanLine(y), y < picture.height() / 2 ? 0 : 1,
                        size_t(picture.width()));
        const QImage preview = previewOf(gifOf(picture, canvas, place, rows));
        const double scale = double(preview.width()) / canvas.width();
        QCOMPARE(preview.width(), std::min(canvas.width(), 700));
        QCOMPARE(preview.height(), preview.width() / 2);
        const auto colorAt = [&](QPointF point) {
            const QPoint pixel = (point * scale).toPoint();
            return preview.rect().contains(pixel) ? std::optional(preview.pixel(pixel))
                                                  : std::nullopt;
        };
        const QPointF middle(picture.width() / 3., picture.height() / 4.);
        if (const auto above = colorAt(place + middle))
            QVERIFY(isNear(*above, Qt::red));
        if (const auto below = colorAt(place + middle + QPointF(0, picture.height() / 2.)))
            QVERIFY(isNear(*below, Qt::blue));
        QVERIFY(isNear(*colorAt(QPointF(canvas.width() / 4., canvas.height() / 4.)), Qt::white));
    }

    void readsInterlacedPngs()
    {
        // Seven passes of one colour each: every pixel takes that of the pass it comes in.
        constexpr QSize size(1403, 901);
        constexpr PngKind interlacedGray{.bitDepth = 8, .interlaced = true};
        constexpr std::array<QPoint, 7> first{
            {{0, 0}, {4, 0}, {0, 4}, {2, 0}, {0, 2}, {1, 0}, {0, 1}}};
        constexpr std::array<QPoint, 7> step{
            {{8, 8}, {8, 8}, {4, 8}, {4, 4}, {2, 4}, {2, 2}, {1, 2}}};
        QByteArray rows;
        double expected = 0;
        for (size_t pass = 0; pass < first.size(); ++pass) {
            const int columns
                = (size.width() - first[pass].x() + step[pass].x() - 1) / step[pass].x();
            const int lines
                = (size.height() - first[pass].y() + step[pass].y() - 1) / step[pass].y();
            const char gray = char(pass * 40);
            rows += (QByteArray(1, '\0') + QByteArray(columns, gray)).repeated(lines);
            expected += double(columns) * lines * quint8(gray) / size.width() / size.height();
        }
        const QImage preview = previewOf(pngOf(size, interlacedGray, rows));
        QCOMPARE(preview.size(), QSize(700, 450));
        double sum = 0;
        for (int y = 0; y < preview.height(); ++y) {
            for (int x = 0; x < preview.width(); ++x)
                sum += qGray(preview.pixel(x, y));
        }
        QVERIFY(std::abs(sum / preview.width() / preview.height() - expected) < 2);

        // Small ones, some of whose passes are empty, come out as they are.
        for (const QSize small : {QSize(1, 1), QSize(3, 2), QSize(5, 9)}) {
            QByteArray smallRows;
            for (size_t pass = 0; pass < first.size(); ++pass) {
                for (int y = first[pass].y(); y < small.height(); y += step[pass].y()) {
                    QByteArray row;
                    for (int x = first[pass].x(); x < small.width(); x += step[pass].x())
                        row += char(x * 50 + y);
                    if (!row.isEmpty())
                        smallRows += '\0' + row;
                }
            }
            const auto picture = decodeImage(pngOf(small, interlacedGray, smallRows), 700);
            QVERIFY(picture);
            QCOMPARE(picture->size(), small);
            for (int y = 0; y < small.height(); ++y) {
                for (int x = 0; x < small.width(); ++x)
                    QCOMPARE(qGray(picture->pixel(x, y)), x * 50 + y);
            }
        }
    }

    void refusesAPngWithPixelsBehindTheLastRow()
    {
        const auto png = [](int surplusBytes) {
            QByteArray rows(65 * 64, '\x01');
            for (int y = 0; y < 64; ++y)
                rows[qsizetype(y) * 65] = 0;
            return pngOf({64, 64}, {.bitDepth = 8}, rows + QByteArray(surplusBytes, '\0'));
        };
        QVERIFY(makePreviewData(png(0)));
        QVERIFY(makePreviewData(png(100'000)));
        QVERIFY(!makePreviewData(png(100 << 20)));
    }

    void turnsTiffUpright_data()
    {
        QTest::addColumn<int>("orientation");
        for (int orientation = 1; orientation <= 8; ++orientation)
            QTest::addRow("%d", orientation) << orientation;
    }
    void turnsTiffUpright()
    {
        QFETCH(int, orientation);
        QByteArray bytes = encoded(storedWithOrientation(quarters({120, 80}), orientation), "tiff");
        // Qt's writer stores orientation 1; the entry's value is patched in place.
        const QByteArray entry = QByteArray::fromHex("120103000100000001");
        const qsizetype at = bytes.indexOf(entry);
        QVERIFY(at >= 0);
        bytes[at + entry.size() - 1] = char(orientation);
        const QImage preview = previewOf(bytes);
        QCOMPARE(preview.size(), QSize(120, 80));
        QVERIFY(showsQuarters(preview));
    }

    void readsPhotographsFromPhones()
    {
        const QImage upright = previewOf(heicPhotograph());
        QCOMPARE(upright.size(), QSize(64, 48));
        QVERIFY(showsQuarters(upright));
        QVERIFY(showsQuarters(previewOf(heicWithTenBits())));

        // Rotated once, by libheif: rotated twice it would show other quarters.
        const QImage turned = previewOf(heicTurnedPhotograph());
        QCOMPARE(turned.size(), QSize(48, 64));
        QVERIFY(showsQuarters(turned.transformed(QTransform().rotate(90))));

        const QImage gray = previewOf(heicInGray());
        QVERIFY(isNear(gray.pixel(32, 24), QColor(100, 100, 100)));
        const QImage halfClear = previewOf(heicWithAlpha());
        QVERIFY(isNear(halfClear.pixel(16, 12), QColor(255, 128, 128)));
    }

    void shrinksPhotographsFromPhones()
    {
        const auto small = decodeImage(heicPhotograph(), 16);
        QVERIFY(small);
        QCOMPARE(small->size(), QSize(16, 12));
        QVERIFY(showsQuarters(*small));
    }

    void showsTheSameColoursWhateverTheProfile()
    {
        QImage wide = filled({40, 40}, QImage::Format_RGB32, QColor(200, 100, 50));
        wide.setColorSpace(QColorSpace::SRgb);
        wide.convertToColorSpace(QColorSpace::DisplayP3);
        QVERIFY(!isNear(wide.pixel(20, 20), QColor(200, 100, 50)));
        for (const char *format : {"png", "jpeg"}) {
            const QImage preview = previewOf(encoded(wide, format, 100));
            QVERIFY2(isNear(preview.pixel(20, 20), QColor(200, 100, 50)), format);
        }
    }

    void knowsWhatAWebpTakes()
    {
        constexpr QSize photograph(8000, 6000);
        const auto bytesFor = [&](const QByteArray &chunks) {
            const QByteArray file = "RIFF\x40\1\1\1WEBP" + chunks;
            return imageFormat(file)->cost(file, photograph)->bytes;
        };
        QCOMPARE(bytesFor("VP8 "), 0);
        QVERIFY(bytesFor("VP8L") <= maximumDecodingBytes);
        const QByteArray extended = QByteArray("VP8X\x0A\0\0\0\x10\0\0\0", 12);
        QCOMPARE(bytesFor(extended + "VP8 "), 0);
        // Packed transparency is a lossless picture of its own.
        QVERIFY(bytesFor(extended + "ALPH") > maximumDecodingBytes);
    }

    void leavesTextsBehind()
    {
        QImage picture = quarters({60, 40});
        picture.setText(u"Comment"_s, u"geheim"_s);
        const QByteArray png = encoded(picture, "png");
        QVERIFY(png.contains("geheim"));
        QVERIFY(!makePreviewData(png)->contains("geheim"));
    }

    void compressesAtTheFixedQuality()
    {
        // The last quantiser of the standard luminance table at quality 68 is
        // (99 × (200 − 2 × 68) + 50) / 100 = 63. Each step of quality changes it.
        constexpr qsizetype head = 5;
        constexpr qsizetype last = 63;
        const QByteArray preview = *makePreviewData(encoded(quarters({60, 40}), "png"));
        const qsizetype table = preview.indexOf("\xFF\xDB");
        QVERIFY(table > 0);
        QCOMPARE(int(preview[table + head + last]), 63);
    }

    void yieldsNothingForWhatIsNoImage_data()
    {
        QTest::addColumn<QByteArray>("bytes");

        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("Esto no es una imagen.");
        QTest::newRow("only the magic of a jpeg") << QByteArray("\xFF\xD8\xFF");
        QTest::newRow("only the magic of a png") << QByteArray("\x89PNG\r\n\x1A\n");
        QTest::newRow("svg") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                           "height='9'><rect width='9' height='9'/></svg>");
        QTest::newRow("icon") << encoded(quarters({32, 32}), "ico");
        QTest::newRow("pixmap text") << encoded(quarters({32, 32}), "ppm");
        QTest::newRow("one byte too many")
            << encoded(quarters({32, 32}), "jpeg") + QByteArray(maximumImageBytes, '\0');
    }
    void yieldsNothingForWhatIsNoImage()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!makePreviewData(bytes));
        QVERIFY(!decodeImage(bytes, 100));
    }
};

QTEST_GUILESS_MAIN(ImagePreviewTest)
#include "ImagePreviewTest.moc"
