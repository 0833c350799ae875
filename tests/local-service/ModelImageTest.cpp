#include "ModelImage.h"

#include "HeicSamples.h"
#include "SampleImages.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QImageWriter>
#include <QTest>

using namespace Qt::StringLiterals;

static QByteArray turned(const QImage &image, const char *format,
                         QImageIOHandler::Transformations turn)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setTransformation(turn);
    writer.write(image);
    return bytes;
}

static QImage halves(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int y = 0; y < size.height() / 2; ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, Qt::red);
    }
    return image;
}

class ModelImageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesASmallJpeg_data()
    {
        QTest::addColumn<QByteArray>("format");
        for (const char *format : {"png", "jpeg", "bmp", "webp", "tiff"})
            QTest::newRow(format) << QByteArray(format);
    }
    void makesASmallJpeg()
    {
        QFETCH(QByteArray, format);
        const auto jpeg = modelImage(encoded(halves({2000, 1000}), format));
        QVERIFY(jpeg);
        QVERIFY(jpeg->startsWith("\xFF\xD8\xFF"));
        const QImage image = QImage::fromData(*jpeg, "jpeg");
        QCOMPARE(image.size(), QSize(1280, 640));
        QVERIFY(image.pixelColor(640, 100).red() > 200);
        QVERIFY(image.pixelColor(640, 500).blue() > 200);
    }

    void keepsASmallSize()
    {
        const auto jpeg = modelImage(encoded(halves({40, 60}), "png"));
        QVERIFY(jpeg);
        QCOMPARE(QImage::fromData(*jpeg).size(), QSize(40, 60));
    }

    void turnsUpright()
    {
        const auto jpeg = modelImage(
            turned(halves({1600, 800}), "jpeg", QImageIOHandler::TransformationRotate90));
        QVERIFY(jpeg);
        const QImage image = QImage::fromData(*jpeg);
        QCOMPARE(image.size(), QSize(640, 1280));
        QVERIFY(image.pixelColor(600, 640).red() > 200);
        QVERIFY(image.pixelColor(40, 640).blue() > 200);
    }

    void readsPhotographsOfPhones_data()
    {
        QTest::addColumn<QByteArray>("heic");
        QTest::addColumn<QSize>("size");
        QTest::newRow("plain") << heicPhotograph() << QSize(64, 48);
        QTest::newRow("turned") << heicTurnedPhotograph() << QSize(48, 64);
        QTest::newRow("10 bits") << heicWithTenBits() << QSize(64, 48);
    }
    void readsPhotographsOfPhones()
    {
        QFETCH(QByteArray, heic);
        QFETCH(QSize, size);
        const auto jpeg = modelImage(heic);
        QVERIFY(jpeg);
        const QImage image = QImage::fromData(*jpeg);
        QCOMPARE(image.size(), size);
        if (size.width() > size.height())
            QVERIFY(showsQuarters(image));
        for (const qsizetype length : {20, 100, 300, 600})
            modelImage(heic.first(length));
    }

    void makesTransparencyWhite()
    {
        QImage image(20, 20, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        const auto jpeg = modelImage(encoded(image, "png"));
        QVERIFY(jpeg);
        QVERIFY(QImage::fromData(*jpeg).pixelColor(10, 10).lightness() > 250);
    }

    void refusesWhatIsNoRasterImage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("hola");
        QTest::newRow("SVG") << QByteArray(
            "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>"
            "<image href='/etc/passwd'/></svg>");
        QTest::newRow("XPM") << QByteArray(
            "/* XPM */\nstatic char *x[] = {\"1 1 1 1\", \"a c #000000\", \"a\"};\n");
        QTest::newRow("cut") << encoded(halves({200, 100}), "png").first(60);
        QTest::newRow("HEIC that is none") << QByteArray("\0\0\0\x18"
                                                         "ftypheic\0\0\0\0mif1heic",
                                                         24);
        // 60,000 by 60,000 pixels in the header.
        QByteArray bomb = encoded(halves({2, 2}), "bmp");
        bomb.replace(18, 8, QByteArray("\x60\xea\0\0\x60\xea\0\0", 8));
        QTest::newRow("too large") << bomb;
    }
    void refusesWhatIsNoRasterImage()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!modelImage(bytes));
    }
};

QTEST_GUILESS_MAIN(ModelImageTest)
#include "ModelImageTest.moc"
