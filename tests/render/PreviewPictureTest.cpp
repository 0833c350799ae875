#include "PreviewPicture.h"

#include "BackgroundWork.h"
#include "HeicSamples.h"
#include "SampleImages.h"

#include <QFile>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr QSizeF maximumSize(300, 220);

/// A JPEG file of that size up to where its pixels would begin.
QByteArray jpegHeader(quint16 width, quint16 height)
{
    const auto number
        = [](quint16 value) { return QByteArray(1, char(value >> 8)) + char(value & 0xFF); };
    return QByteArray::fromHex("ffd8ffe000104a46494600010100000100010000ffc0001108")
        + number(height) + number(width)
        + QByteArray::fromHex("03012200021101031101ffda000c03010002110311003f00");
}

/// Which image plug-ins, of Qt and of others, are loaded into this process.
QByteArray loadedReaders()
{
    QFile maps(u"/proc/self/maps"_s);
    if (!maps.open(QIODevice::ReadOnly))
        qFatal("cannot tell what is loaded");
    QByteArray readers;
    for (const QByteArray &line : maps.readAll().split('\n')) {
        if (line.contains("/imageformats/"))
            readers += line;
    }
    return readers;
}

} // namespace

/// The thumbnail of a stored message: its place, known from the header, and its pixels.
class PreviewPictureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(400, 300);
        m_picture = newPicture();
    }

    void cleanup()
    {
        decodingPool()->waitForDone();
        m_window.reset();
    }

    // First, while no other test has loaded a reader.
    void knowsItsSizeWithoutAskingAReader()
    {
        QCOMPARE(loadedReaders(), QByteArray());
        m_picture->setBytes(jpegHeader(600, 400));
        QCOMPARE(implicitSize(), QSizeF(300, 200));
        QCOMPARE(loadedReaders(), QByteArray());
    }

    void fitsTheSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSizeF>("shown");
        QTest::newRow("wide") << QSize(700, 350) << QSizeF(300, 150);
        QTest::newRow("tall") << QSize(350, 700) << QSizeF(110, 220);
        QTest::newRow("small") << QSize(30, 22) << QSizeF(300, 220);
        QTest::newRow("thread") << QSize(700, 1) << QSizeF(300, 1);
        QTest::newRow("of a sharp screen") << QSize(1400, 700) << QSizeF(300, 150);
    }
    void fitsTheSize()
    {
        QFETCH(QSize, size);
        QFETCH(QSizeF, shown);
        for (const QByteArray &bytes :
             {encoded(quarters(size), "jpeg"), encodedProgressively(quarters(size))}) {
            m_picture->setBytes(bytes);
            QCOMPARE(implicitSize(), shown);
        }
    }

    void showsThePictureOnceItIsWanted_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("jpeg") << encoded(quarters({600, 400}), "jpeg");
        QTest::newRow("progressive jpeg") << encodedProgressively(quarters({600, 400}));
        QTest::newRow("jpeg lying on its side") << withExifOrientation(
            encoded(storedWithOrientation(quarters({600, 400}), 6), "jpeg"), 6);
        QTest::newRow("photograph") << encoded(quarters({3000, 2000}), "jpeg");
        QTest::newRow("png") << encoded(quarters({600, 400}), "png");
        QTest::newRow("webp") << encoded(quarters({600, 400}), "webp");
        QTest::newRow("bmp") << encoded(quarters({600, 400}), "bmp");
        QTest::newRow("tiff") << encoded(quarters({600, 400}), "tiff");
    }
    void showsThePictureOnceItIsWanted()
    {
        QFETCH(QByteArray, bytes);
        m_picture->setBytes(bytes);
        decodingPool()->waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(m_picture->image().isNull());
        m_picture->setWanted(true);
        QTRY_VERIFY(!m_picture->image().isNull());
        QCOMPARE(implicitSize(), QSizeF(300, 200));
        QCOMPARE(m_picture->image().size(), QSize(300, 200)); // No more pixels than are shown
        QVERIFY(showsQuarters(m_picture->image()));

        m_picture->setWanted(false);
        QVERIFY(m_picture->image().isNull());
        QCOMPARE(implicitSize(), QSizeF(300, 200));
        m_picture->setWanted(true);
        QTRY_VERIFY(!m_picture->image().isNull());
        QVERIFY(showsQuarters(m_picture->image()));
    }

    void isTheFirstFrameOfAnAnimation()
    {
        m_picture->setBytes(animatedGif());
        m_picture->setWanted(true);
        QTRY_COMPARE(implicitSize(), QSizeF(300, 200));
        QCOMPARE(m_picture->image().pixelColor(5, 5), QColor(Qt::red));
    }

    void takesNoPlaceForWhatIsNoPicture_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray png = encoded(quarters({600, 400}), "png");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("no es una imagen");
        QTest::newRow("svg") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                           "height='9'><rect width='9' height='9'/></svg>");
        QTest::newRow("jpeg of no pixels") << jpegHeader(600, 400);
        QTest::newRow("jpeg of 4 gigapixels") << jpegHeader(65'500, 65'500);
        QTest::newRow("jpeg of no size") << jpegHeader(0, 0);
        QTest::newRow("start of a jpeg") << QByteArray("\xFF\xD8\xFF");
        QTest::newRow("half a png") << png.first(60);
        QTest::newRow("png of 4 gigapixels") << flatPng({65'500, 65'500}, {});
        QTest::newRow("start of a gif") << animatedGif().first(13);
        QTest::newRow("start of a heic") << heicPhotograph().first(400);
    }
    void takesNoPlaceForWhatIsNoPicture()
    {
        QFETCH(QByteArray, bytes);
        m_picture->setBytes(bytes);
        m_picture->setWanted(true);
        // One thread decodes, in order: what was asked for before this is done when this is.
        PreviewPicture *probe = newPicture();
        probe->setBytes(encoded(quarters({40, 30}), "jpeg"));
        probe->setWanted(true);
        QTRY_VERIFY(!probe->image().isNull());
        QCOMPARE(implicitSize(), QSizeF(0, 0));
        QVERIFY(m_picture->image().isNull());
    }

    void neverTakesPlaceForAHeaderThatExaggerates()
    {
        m_picture->setBytes(jpegHeader(65'500, 65'500));
        QCOMPARE(implicitSize(), QSizeF(0, 0));
    }

    void forgetsThePictureOfOtherBytes()
    {
        m_picture->setBytes(encoded(quarters({600, 400}), "jpeg"));
        m_picture->setWanted(true);
        decodingPool()->waitForDone(); // Its answer is on its way
        m_picture->setWanted(false);
        m_picture->setBytes(encoded(quarters({350, 700}), "jpeg"));
        QCOMPARE(implicitSize(), QSizeF(110, 220));
        QCoreApplication::processEvents();
        QVERIFY(m_picture->image().isNull());
        m_picture->setWanted(true);
        QTRY_COMPARE(m_picture->image().size(), QSize(110, 220));
    }

    void isDecodedOnce()
    {
        QSignalSpy changes(m_picture, &PreviewPicture::imageChanged);
        m_picture->setBytes(encoded(quarters({600, 400}), "png"));
        m_picture->setWanted(true);
        QTRY_COMPARE(changes.size(), 1);
        m_picture->setMaximumSize(maximumSize / 2);
        m_picture->setMaximumSize(maximumSize);
        decodingPool()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(changes.size(), 1);
    }

private:
    /// A picture as the engine makes one, which finishes what it makes.
    PreviewPicture *newPicture() const
    {
        class FinishedPicture : public PreviewPicture
        {
        public:
            FinishedPicture() { componentComplete(); }
        };
        auto *picture = new FinishedPicture;
        picture->setParent(m_window.get());
        picture->setParentItem(m_window->contentItem());
        picture->setMaximumSize(maximumSize);
        return picture;
    }

    QSizeF implicitSize() const
    {
        return {m_picture->implicitWidth(), m_picture->implicitHeight()};
    }

    std::unique_ptr<QQuickWindow> m_window;
    PreviewPicture *m_picture = nullptr;
};

QTEST_MAIN(PreviewPictureTest)
#include "PreviewPictureTest.moc"
