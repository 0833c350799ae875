#include "ImageFacts.h"

#include <QBuffer>
#include <QImage>
#include <QTest>

using namespace Qt::StringLiterals;

static QByteArray encoded(const char *format, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

class ImageFactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTypeAndSize_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QSize>("size");

        QTest::newRow("PNG") << encoded("png", {30, 20}) << u"PNG"_s << QSize(30, 20);
        QTest::newRow("JPEG") << encoded("jpeg", {31, 21}) << u"JPEG"_s << QSize(31, 21);
        QTest::newRow("BMP") << encoded("bmp", {32, 22}) << u"BMP"_s << QSize(32, 22);
        QTest::newRow("WebP") << encoded("webp", {33, 23}) << u"WebP"_s << QSize(33, 23);
        QTest::newRow("TIFF") << encoded("tiff", {34, 24}) << u"TIFF"_s << QSize(34, 24);
        QTest::newRow("GIF") << QByteArray::fromHex("4749463839610a0005008000000000000000002c"
                                                    "000000000a0005000002058c8fa9cb5d003b")
                             << u"GIF"_s << QSize(10, 5);
        QTest::newRow("on its side") << QByteArray() << u"JPEG"_s << QSize(20, 40);
        QTest::newRow("SVG") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                           "height='9'/>")
                             << u""_s << QSize();
        QTest::newRow("text") << QByteArray("hola") << u""_s << QSize();
        QTest::newRow("cut PNG") << encoded("png", {30, 20}).first(12) << u"PNG"_s << QSize();
    }
    void tellsTypeAndSize()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, format);
        QFETCH(QSize, size);
        if (qstrcmp(QTest::currentDataTag(), "on its side") == 0) {
            // An EXIF block with orientation 6 right after the start of the file.
            const QByteArray exif = QByteArray::fromHex("ffe1002245786966000049492a00080000000100"
                                                        "12010300010000000600000000000000");
            bytes = encoded("jpeg", {40, 20}).insert(2, exif);
        }
        const ImageFacts facts = imageFacts(bytes);
        QCOMPARE(facts.format, format);
        QCOMPARE(facts.size.isEmpty(), size.isEmpty());
        if (!size.isEmpty())
            QCOMPARE(facts.size, size);
        QCOMPARE(facts.byteCount, bytes.size());
    }
};

QTEST_GUILESS_MAIN(ImageFactsTest)
#include "ImageFactsTest.moc"
