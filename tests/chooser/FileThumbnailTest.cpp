#include "FileThumbnail.h"

#include "BackgroundWork.h"
#include "ImageLimits.h"
#include "LocalFile.h"
#include "SampleImages.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>
#include <sys/stat.h>
#include <vector>

using namespace Qt::StringLiterals;

/// Thumbnails of real files.
class FileThumbnailTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheWholePictureSmall()
    {
        FileThumbnail thumbnail;
        thumbnail.setFile(file("foto.jpg", encoded(quarters({1200, 800}), "jpeg")));
        QTRY_VERIFY(thumbnail.isDecoded());
        QCOMPARE(thumbnail.image().size(), QSize(256, 171));
        QCOMPARE(QSizeF(thumbnail.implicitWidth(), thumbnail.implicitHeight()), QSizeF(256, 171));
        QVERIFY(showsQuarters(thumbnail.image()));
    }

    void whatIsNoImageShowsNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("text") << QByteArray("no soy una imagen");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("larger than is taken")
            << encoded(quarters({40, 40}), "jpeg").leftJustified(maximumImageBytes + 1, '\0');
        // 50 kilobytes of 400 million pixels.
        QTest::newRow("a vast picture") << flatPng({20'000, 20'000}, {});
    }

    void whatIsNoImageShowsNothing()
    {
        QFETCH(QByteArray, bytes);
        FileThumbnail refused;
        FileThumbnail next;
        refused.setFile(file("a.png", bytes));
        next.setFile(file("b.png", encoded(quarters({40, 40}), "png")));
        QTRY_VERIFY(next.isDecoded());
        settle();
        QVERIFY(!refused.isDecoded());
    }

    void whatIsNoRegularFileIsNotWaitedFor()
    {
        const QByteArray pipe = m_folder.path().toUtf8() + "/tubo.png";
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        std::vector<std::unique_ptr<FileThumbnail>> thumbnails;
        for (int i = 0; i < 8; ++i) {
            thumbnails.push_back(std::make_unique<FileThumbnail>());
            thumbnails.back()->setFile(localFileUrl(pipe));
        }
        FileThumbnail next;
        next.setFile(file("b.png", encoded(quarters({40, 40}), "png")));
        QTRY_VERIFY(next.isDecoded());
    }

    void theFileGivenLastIsShown()
    {
        FileThumbnail thumbnail;
        const QSignalSpy changes(&thumbnail, &FileThumbnail::imageChanged);
        thumbnail.setFile(file("ancha.png", encoded(quarters({200, 100}), "png")));
        thumbnail.setFile(file("alta.png", encoded(quarters({100, 200}), "png")));
        QTRY_VERIFY(thumbnail.isDecoded());
        settle();
        QCOMPARE(thumbnail.image().size(), QSize(100, 200));
        QCOMPARE(changes.count(), 1);
        thumbnail.setFile({});
        QVERIFY(!thumbnail.isDecoded());
    }

    void thumbnailsThatAreGoneAreNotWaitedFor()
    {
        const QUrl url = file("foto.png", encoded(quarters({3000, 2000}), "png"));
        for (int i = 0; i < 200; ++i) {
            FileThumbnail passing;
            passing.setFile(url);
        }
        FileThumbnail last;
        last.setFile(url);
        QTRY_VERIFY(last.isDecoded());
    }

    void allOfManyAreShown()
    {
        std::vector<std::unique_ptr<FileThumbnail>> thumbnails;
        for (int i = 0; i < 30; ++i) {
            thumbnails.push_back(std::make_unique<FileThumbnail>());
            thumbnails.back()->setFile(file("foto " + QByteArray::number(i) + ".png",
                                            encoded(quarters({40 + i, 40}), "png")));
        }
        QTRY_VERIFY(std::all_of(thumbnails.begin(), thumbnails.end(),
                                [](const auto &thumbnail) { return thumbnail->isDecoded(); }));
        QCOMPARE(thumbnails.back()->image().width(), 69);
    }

private:
    QUrl file(const QByteArray &name, const QByteArray &bytes) const
    {
        const QByteArray path = m_folder.path().toUtf8() + '/' + name;
        QFile target(QFile::decodeName(path));
        if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size())
            qFatal("no sample file");
        return localFileUrl(path);
    }

    /// Lets whatever is under way come to its end.
    static void settle()
    {
        for (int i = 0; i < 4; ++i) {
            loadingPool()->waitForDone();
            decodingPool()->waitForDone();
            QCoreApplication::processEvents();
        }
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(FileThumbnailTest)

#include "FileThumbnailTest.moc"
