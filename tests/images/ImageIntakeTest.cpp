#include "ImageIntake.h"

#include "BackgroundWork.h"
#include "ImageFileNames.h"
#include "ImagePreview.h"
#include "SampleImages.h"
#include "Screen.h"

#include <QClipboard>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QThreadPool>

#include <fcntl.h>
#include <functional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString unreadableFile = u"No pude leer la imagen seleccionada."_s;
const QString unreadableDrop = u"No pude leer la imagen arrastrada."_s;
const QString tooLarge = u"La imagen es demasiado grande. Elegí una imagen de menos de 12 MB."_s;
const QString noImage = u"El archivo no parece ser una imagen válida."_s;

/// An item whose data arrives when the test says so.
class FakeItem : public ItemProvider
{
public:
    FakeItem(QStringList types, std::optional<QString> name)
        : m_types(std::move(types))
        , m_name(std::move(name))
    { }

    QStringList registeredTypeIdentifiers() const override { return m_types; }
    std::optional<QString> suggestedName() const override { return m_name; }
    void loadDataRepresentation(const QString &typeIdentifier, Completion completion) override
    {
        loadedTypes.append(typeIdentifier);
        m_completion = std::move(completion);
    }
    void finish(LoadedItem item) { m_completion(std::move(item)); }

    QStringList loadedTypes;

private:
    QStringList m_types;
    std::optional<QString> m_name;
    Completion m_completion;
};

std::shared_ptr<FakeItem> fakeItem(const QStringList &types,
                                   const std::optional<QString> &name = std::nullopt)
{
    return std::make_shared<FakeItem>(types, name);
}

QByteArray sample()
{
    static const QByteArray bytes = encoded(quarters({80, 60}), "png");
    return bytes;
}

QByteArray otherSample()
{
    static const QByteArray bytes = encoded(quarters({60, 80}), "jpeg");
    return bytes;
}

/// Trailing bytes are no part of the picture, so a sample can have any size.
QByteArray sampleOfSize(qint64 size)
{
    return sample() + QByteArray(size - sample().size(), '\0');
}

} // namespace

class ImageIntakeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_screen = std::make_unique<Screen>();
        m_folder = std::make_unique<QTemporaryDir>();
        QGuiApplication::clipboard()->clear();
    }

    void cleanup() { m_screen.reset(); }

    void offersFilesByTheirNames_data()
    {
        QTest::addColumn<bool>("offered");
        for (const char *name : {"a.jpg", "a.jpeg", "a.jpe", "a.png", "a.gif", "a.webp", "a.bmp",
                                 "a.dib", "a.jfif", "A.JFIF", "a.tif", "a.tiff", "a.heic", "a.heif",
                                 "a.hif", "IMG_0001.JPG", "Foto.Jpg", "a.hEIC", "a.txt.png"})
            QTest::newRow(name) << true;
        for (const char *name : {"a.txt", "a.svg", "a.pdf", "a.png.txt", "png"})
            QTest::newRow(name) << false;
    }
    void offersFilesByTheirNames()
    {
        QFETCH(bool, offered);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        file(name, sample());
        const QDir folder(m_folder->path());
        QCOMPARE(folder.entryList(ImageFileNames::patterns(), QDir::Files | QDir::CaseSensitive),
                 offered ? QStringList(name) : QStringList());
    }

    void takesAChosenFile_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("mimeType");

        const QImage picture = quarters({40, 30});
        QTest::newRow("png") << u"a.png"_s << encoded(picture, "png") << u"image/png"_s;
        QTest::newRow("jpg") << u"a.jpg"_s << encoded(picture, "jpeg") << u"image/jpeg"_s;
        QTest::newRow("jpeg in capitals")
            << u"A.JPEG"_s << encoded(picture, "jpeg") << u"image/jpeg"_s;
        QTest::newRow("jfif") << u"a.jfif"_s << encoded(picture, "jpeg") << u"image/jpeg"_s;
        QTest::newRow("tiff") << u"a.tif"_s << encoded(picture, "tiff") << u"image/tiff"_s;
        QTest::newRow("webp") << u"a.webp"_s << encoded(picture, "webp") << u"image/webp"_s;
        QTest::newRow("gif") << u"a.gif"_s << animatedGif() << u"image/gif"_s;
        QTest::newRow("bmp") << u"a.bmp"_s << encoded(picture, "bmp") << u"image/bmp"_s;
        QTest::newRow("heic by name") << u"IMG.HEIC"_s << sample() << u"image/heic"_s;
        QTest::newRow("heif by name") << u"a.heif"_s << sample() << u"image/heif"_s;
        QTest::newRow("unknown extension") << u"a.xyzzy"_s << sample() << u"image/jpeg"_s;
        QTest::newRow("no extension") << u"foto"_s << sample() << u"image/jpeg"_s;
        QTest::newRow("two extensions") << u"a.jpg.png"_s << sample() << u"image/png"_s;
        QTest::newRow("extension of another type") << u"a.txt"_s << sample() << u"text/plain"_s;
        QTest::newRow("signs in the name")
            << u"¿qué? #1 50%20 ñandú.png"_s << sample() << u"image/png"_s;
        QTest::newRow("line feed in the name") << u"a\nb.png"_s << sample() << u"image/png"_s;
    }
    void takesAChosenFile()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, mimeType);
        m_screen->intake.handleImportedFile({file(fileName, bytes)});
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageData(), bytes);
        QCOMPARE(view().selectedImageName(), fileName);
        QCOMPARE(view().selectedImageMimeType(), mimeType);
        QVERIFY(!view().hasImageImportError());
    }

    void takesAFileOfThisMachineByItsName()
    {
        QUrl url = file(u"a.png"_s, sample());
        url.setHost(QSysInfo::machineHostName());
        m_screen->intake.handleImportedFile({url});
        QTRY_COMPARE(view().selectedImageName(), u"a.png"_s);
    }

    void takesAFileWhoseNameIsNotUtf8()
    {
#ifdef Q_OS_DARWIN
        QSKIP("its file systems have no such names");
#endif
        const QByteArray name = QFile::encodeName(path(u"c"_s)) + "\xE9lula.png";
        const int descriptor = ::open(name.constData(), O_CREAT | O_WRONLY, 0600);
        QVERIFY(descriptor >= 0);
        QFile file;
        QVERIFY(file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle));
        QCOMPARE(file.write(sample()), sample().size());
        file.close();
        m_screen->intake.handleImportedFile(
            {QUrl::fromEncoded("file://" + name.toPercentEncoding("/"))});
        QTRY_COMPARE(view().selectedImageName(), u"c\uFFFDlula.png"_s);
        QCOMPARE(view().selectedImageData(), sample());
        QCOMPARE(view().selectedImageMimeType(), u"image/png"_s);
    }

    void goesWithoutWaitingForADecoderOrAFile()
    {
        constexpr auto busy = 3s;
        QSemaphore begun;
        QSemaphore ends;
        for (QThreadPool *pool : {decodingPool(), loadingPool()})
            pool->start([&] {
                begun.release();
                ends.tryAcquire(1, int(busy / 1ms));
            });
        // What has not begun is dropped when the work is finished, and would keep nothing waiting.
        QVERIFY(begun.tryAcquire(2, int(busy / 1ms)));
        QElapsedTimer time;
        time.start();
        m_screen->intake.acceptImage(sample(), u"a.png"_s, std::nullopt);
        m_screen.reset();
        QVERIFY(!finishBackgroundWork(100ms));
        QVERIFY(time.elapsed() < busy / 2 / 1ms);
        ends.release(2);
        QVERIFY(finishBackgroundWork(busy));
    }

    void takesTheFirstOfSeveralFiles()
    {
        m_screen->intake.handleImportedFile(
            {file(u"a.png"_s, sample()), file(u"b.jpg"_s, otherSample())});
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageName(), u"a.png"_s);
    }

    void followsALink()
    {
        file(u"a.png"_s, sample());
        QVERIFY(QFile::link(path(u"a.png"_s), path(u"link.png"_s)));
        m_screen->intake.handleImportedFile({QUrl::fromLocalFile(path(u"link.png"_s))});
        QTRY_COMPARE(view().selectedImageName(), u"link.png"_s);
    }

    void doesNothingWithoutAFile()
    {
        m_screen->intake.handleImportedFile(QList<QUrl>());
        settle();
        verifyNothingTaken();
    }

    void showsTheChoosersError()
    {
        m_screen->intake.handleImportedFile(ImportError{u"Se interrumpió."_s});
        QCOMPARE(view().imageImportError(), u"Se interrumpió."_s);
    }

    void refusesWhatIsNoReadableFile_data()
    {
        QTest::addColumn<QUrl>("url");

        QTest::newRow("vanished") << QUrl::fromLocalFile(u"/nonexistent/a.png"_s);
        QTest::newRow("folder") << QUrl::fromLocalFile(QDir::tempPath());
        QTest::newRow("device without end") << QUrl::fromLocalFile(u"/dev/zero"_s);
        QTest::newRow("empty device") << QUrl::fromLocalFile(u"/dev/null"_s);
        QTest::newRow("on the web") << QUrl(u"https://localhost/a.png"_s);
        QTest::newRow("on a share") << QUrl(u"file://server/share/a.png"_s);
        QTest::newRow("in the program") << QUrl(u"qrc:/a.png"_s);
        QTest::newRow("in the address") << QUrl(u"data:image/png;base64,AAAA"_s);
        QTest::newRow("no address") << QUrl();
        QTest::newRow("relative") << QUrl(u"a.png"_s);
        QTest::newRow("scheme alone") << QUrl(u"file:"_s);
        QTest::newRow("zero in the name") << QUrl(u"file:///etc/hostname%00.png"_s);
    }
    void refusesWhatIsNoReadableFile()
    {
        QFETCH(QUrl, url);
        m_screen->intake.handleImportedFile({url});
        QTRY_COMPARE(view().imageImportError(), unreadableFile);
        QVERIFY(!view().hasSelectedImage());
    }

    void doesNotWaitForAPipeOrASocket()
    {
        const QString pipe = path(u"pipe.png"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        m_screen->intake.handleImportedFile({QUrl::fromLocalFile(pipe)});
        QTRY_COMPARE(view().imageImportError(), unreadableFile);

        view().dismissImageImportError();
        const QByteArray socketPath = QFile::encodeName(path(u"socket.png"_s));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, socketPath.constData(), sizeof(address.sun_path));
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        QCOMPARE(::bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
        m_screen->intake.handleImportedFile({QUrl::fromLocalFile(path(u"socket.png"_s))});
        QTRY_COMPARE(view().imageImportError(), unreadableFile);
        ::close(socket);
    }

    void refusesWhatIsNoImage_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("bytes");

        QTest::newRow("text called jpg") << u"a.jpg"_s << QByteArray("Esto es un texto.");
        QTest::newRow("empty") << u"a.png"_s << QByteArray();
        QTest::newRow("svg called jpg")
            << u"a.jpg"_s
            << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
        QTest::newRow("svg") << u"a.svg"_s
                             << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                           "height='9'/>");
        QTest::newRow("pdf") << u"a.pdf"_s << QByteArray("%PDF-1.4\n");
        QTest::newRow("half a png") << u"a.png"_s << sample().first(40);
    }
    void refusesWhatIsNoImage()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, bytes);
        m_screen->intake.handleImportedFile({file(fileName, bytes)});
        QTRY_COMPARE(view().imageImportError(), noImage);
        QVERIFY(!view().hasSelectedImage());
    }

    void takesTwelveMegabytesAndNoByteMore()
    {
        m_screen->intake.handleImportedFile({file(u"a.png"_s, sampleOfSize(12'582'912))});
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageData()->size(), 12'582'912);
        QVERIFY(!view().hasImageImportError());

        view().clearSelectedImage();
        m_screen->intake.handleImportedFile({file(u"b.png"_s, sampleOfSize(12'582'913))});
        QTRY_COMPARE(view().imageImportError(), tooLarge);
        QVERIFY(!view().hasSelectedImage());
    }

    void asksForTheSizeBeforeTheContent()
    {
        m_screen->intake.acceptImage(QByteArray(12'582'913, 'x'), u"a"_s, std::nullopt);
        QCOMPARE(view().imageImportError(), tooLarge);
    }

    void takesTheTypeFromItsIdentifier_data()
    {
        QTest::addColumn<std::optional<QString>>("identifier");
        QTest::addColumn<QString>("mimeType");

        const auto row
            = [](const char *name, const std::optional<QString> &identifier,
                 const QString &mimeType) { QTest::newRow(name) << identifier << mimeType; };
        row("none", std::nullopt, u"image/jpeg"_s);
        row("known", u"image/png"_s, u"image/png"_s);
        row("another name of a known one", u"image/x-bmp"_s, u"image/bmp"_s);
        row("heic", u"image/heic"_s, u"image/heic"_s);
        row("unknown", u"image/x-nobody-knows"_s, u"image/jpeg"_s);
        row("empty", u""_s, u"image/jpeg"_s);
        row("no type at all", u"público"_s, u"image/jpeg"_s);
    }
    void takesTheTypeFromItsIdentifier()
    {
        QFETCH(std::optional<QString>, identifier);
        QFETCH(QString, mimeType);
        m_screen->intake.acceptImage(sample(), u"a"_s, identifier);
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageMimeType(), mimeType);
    }

    void aNewImageReplacesTheOldOneAndKeepsTheError()
    {
        view().setImageImportError(u"Antes."_s);
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        QTRY_COMPARE(view().selectedImageName(), u"a.png"_s);
        m_screen->intake.acceptImage(otherSample(), u"b.jpg"_s, u"image/jpeg"_s);
        QTRY_COMPARE(view().selectedImageName(), u"b.jpg"_s);
        QCOMPARE(view().selectedImageData(), otherSample());
        QCOMPARE(view().selectedImageMimeType(), u"image/jpeg"_s);
        QCOMPARE(view().imageImportError(), u"Antes."_s);
    }

    void theLastOfTwoImagesInCheckWins()
    {
        QSignalSpy changes(&view(), &ContentView::selectedImageChanged);
        const QByteArray large = encoded(quarters({3000, 2000}), "jpeg");
        m_screen->intake.acceptImage(large, u"large.jpg"_s, u"image/jpeg"_s);
        m_screen->intake.acceptImage(sample(), u"small.png"_s, u"image/png"_s);
        QTRY_COMPARE(changes.size(), 2);
        QCOMPARE(view().selectedImageName(), u"small.png"_s);
    }

    void theLastGivenImageWinsWhateverLoadsLast()
    {
        const auto slow = fakeItem({u"image/png"_s}, u"lenta"_s);
        const auto quick = fakeItem({u"image/jpeg"_s}, u"rápida"_s);
        QVERIFY(m_screen->intake.handleDrop({slow}));
        QVERIFY(m_screen->intake.handleDrop({quick}));
        quick->finish({.error = {}, .data = otherSample()});
        QTRY_COMPARE(view().selectedImageName(), u"rápida"_s);
        slow->finish({.error = {}, .data = sample()});
        settle();
        QCOMPARE(view().selectedImageName(), u"rápida"_s);
        QCOMPARE(view().selectedImageData(), otherSample());
        QCOMPARE(view().selectedImageMimeType(), u"image/jpeg"_s);
    }

    void anEarlierImageIsTakenWhenTheLaterIsRefused()
    {
        const auto slow = fakeItem({u"image/png"_s}, u"lenta"_s);
        QVERIFY(m_screen->intake.handleDrop({slow}));
        m_screen->intake.acceptImage("x", u"b.png"_s, u"image/png"_s);
        QTRY_COMPARE(view().imageImportError(), noImage);
        slow->finish({.error = {}, .data = sample()});
        QTRY_COMPARE(view().selectedImageName(), u"lenta"_s);
    }

    void callsTheActionAtOnceWithoutImports()
    {
        int calls = 0;
        m_screen->intake.whenSettled([&] { ++calls; });
        QCOMPARE(calls, 1);
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        QTRY_VERIFY(view().hasSelectedImage());
        m_screen->intake.whenSettled([&] { ++calls; });
        QCOMPARE(calls, 2);
    }

    void callsTheActionAfterAllImports()
    {
        QStringList names;
        const auto note = [&] { names.append(view().selectedImageName().value_or(u"ninguna"_s)); };
        const auto item = fakeItem({u"image/png"_s}, u"arrastrada"_s);
        QVERIFY(m_screen->intake.handleDrop({item}));
        m_screen->intake.handleImportedFile({file(u"a.png"_s, sample())});
        m_screen->intake.whenSettled(note);
        QTRY_COMPARE(view().selectedImageName(), u"a.png"_s);
        QCOMPARE(names, QStringList());
        m_screen->intake.whenSettled(note);
        item->finish({.error = {}, .data = otherSample()});
        QTRY_COMPARE(names, QStringList{u"a.png"_s}); // Once, with the image given last
    }

    void imagesGivenLaterComeAfterwards()
    {
        QStringList names;
        const auto first = fakeItem({u"image/png"_s}, u"primera"_s);
        QVERIFY(m_screen->intake.handleDrop({first}));
        m_screen->intake.whenSettled([&] {
            names.append(view().selectedImageName().value_or(u"ninguna"_s));
            view().clearSelectedImage();
        });
        m_screen->intake.acceptImage(otherSample(), u"segunda"_s, u"image/jpeg"_s);
        const auto third = fakeItem({u"image/png"_s}, u"tercera"_s);
        QVERIFY(m_screen->intake.handleDrop({third}));
        settle();
        QVERIFY(!view().hasSelectedImage());

        first->finish({.error = {}, .data = sample()});
        QTRY_COMPARE(names, QStringList{u"primera"_s});
        QCOMPARE(view().selectedImageName(), u"segunda"_s);
        QCOMPARE(view().selectedImageData(), otherSample());
        third->finish({.error = {}, .data = sample()});
        QTRY_COMPARE(view().selectedImageName(), u"tercera"_s);
        QCOMPARE(names.size(), 1);
    }

    void callsTheActionWhenTheImageIsLost_data()
    {
        QTest::addColumn<std::function<void(Screen &)>>("loseImage");
        using Action = std::function<void(Screen &)>;
        QTest::newRow("no image") << Action(
            [](Screen &screen) { screen.intake.acceptImage("x", u"a"_s, std::nullopt); });
        QTest::newRow("too large") << Action([](Screen &screen) {
            screen.intake.acceptImage(sampleOfSize(12'582'913), u"a"_s, std::nullopt);
        });
        QTest::newRow("no file") << Action([](Screen &screen) {
            screen.intake.handleImportedFile({QUrl::fromLocalFile(u"/nonexistent"_s)});
        });
        QTest::newRow("switched off")
            << Action([](Screen &screen) { screen.contentView.setImageAnalysisEnabled(false); });
        QTest::newRow("another conversation")
            << Action([](Screen &screen) { screen.contentView.startNewConversation(); });
        QTest::newRow("a conversation that is gone") << Action(
            [](Screen &screen) { screen.contentView.selectConversation(QUuid::createUuid()); });
        QTest::newRow("the same conversation") << Action([](Screen &screen) {
            screen.contentView.selectConversation(*screen.contentView.selectedConversationID());
        });
        QTest::newRow("all cleared")
            << Action([](Screen &screen) { screen.contentView.clearHistory(); });
        QTest::newRow("cancelled") << Action([](Screen &screen) { screen.intake.cancelJobs(); });
    }
    void callsTheActionWhenTheImageIsLost()
    {
        using Action = std::function<void(Screen &)>;
        QFETCH(Action, loseImage);
        view().loadHistory();
        view().setMessageText(u"borrador"_s);
        const QList<Conversation> before = view().conversations()->conversations();
        const auto selected = view().selectedConversationID();
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({item}));
        int calls = 0;
        bool wasAsItWas = false;
        m_screen->intake.whenSettled([&] {
            ++calls;
            // Nothing is emptied or left behind yet.
            wasAsItWas = view().messageText() == u"borrador"_s
                && view().selectedConversationID() == selected
                && view().conversations()->conversations() == before && !view().hasSelectedImage();
        });
        QCOMPARE(calls, 0);
        loseImage(*m_screen);
        item->finish({.error = u"Se cortó."_s, .data = {}});
        settle();
        QCOMPARE(calls, 1);
        QVERIFY(wasAsItWas);
        m_screen->intake.whenSettled([&] { ++calls; });
        QCOMPARE(calls, 2);
    }

    void tellsOfAnImageBeforeWhatWaitedForIt()
    {
        std::optional<QString> error;
        m_screen->intake.acceptImage("x", u"a.png"_s, u"image/png"_s);
        m_screen->intake.whenSettled([&] { error = view().imageImportError(); });
        QTRY_COMPARE(error, noImage);
    }

    void aRefusalLeavesTheSelectionAlone()
    {
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        QTRY_VERIFY(view().hasSelectedImage());
        m_screen->intake.acceptImage("x", u"b.png"_s, u"image/png"_s);
        QTRY_COMPARE(view().imageImportError(), noImage);
        m_screen->intake.handleImportedFile({QUrl::fromLocalFile(u"/nonexistent"_s)});
        QTRY_COMPARE(view().imageImportError(), unreadableFile);
        QCOMPARE(view().selectedImageName(), u"a.png"_s);
        QCOMPARE(view().selectedImageData(), sample());
        QCOMPARE(view().selectedImageMimeType(), u"image/png"_s);
    }

    void takesNothingWhileSwitchedOff()
    {
        view().setImageAnalysisEnabled(false);
        const auto item = fakeItem({u"image/png"_s});
        QGuiApplication::clipboard()->setImage(quarters({20, 20}));

        m_screen->intake.handleImportedFile({file(u"a.png"_s, sample())});
        m_screen->intake.handleImportedFile({QUrl::fromLocalFile(u"/nonexistent"_s)});
        m_screen->intake.handleImportedFile(ImportError{u"Se interrumpió."_s});
        QVERIFY(!m_screen->intake.takesDrops());
        QVERIFY(!m_screen->intake.handleDrop({item}));
        QVERIFY(!m_screen->intake.pasteImage());
        settle();
        QVERIFY(item->loadedTypes.isEmpty());
        verifyNothingTaken();
    }

    void switchingAnalysisOffCancelsImports_data()
    {
        QTest::addColumn<bool>("switchedOnAgain");
        QTest::newRow("and stays off") << false;
        QTest::newRow("and on again") << true;
    }
    void switchingAnalysisOffCancelsImports()
    {
        QFETCH(bool, switchedOnAgain);
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({item}));
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        m_screen->intake.acceptImage("x", u"b.png"_s, u"image/png"_s);
        m_screen->intake.handleImportedFile({file(u"c.png"_s, sample())});
        view().setImageAnalysisEnabled(false);
        view().setImageAnalysisEnabled(switchedOnAgain);
        item->finish({.error = {}, .data = sample()});
        settle();
        verifyNothingTaken();
    }

    void selectingAnotherConversationCancelsImports()
    {
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        view().selectConversation(QUuid::createUuid());
        settle();
        verifyNothingTaken();
    }

    void selectingTheSameConversationCancelsImports()
    {
        view().startNewConversation();
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        view().selectConversation(*view().selectedConversationID());
        settle();
        verifyNothingTaken();
    }

    void refusesADropDuringAReply()
    {
        view().setLoading(true);
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(!m_screen->intake.takesDrops());
        QVERIFY(!m_screen->intake.handleDrop({item}));
        QGuiApplication::clipboard()->setImage(quarters({20, 20}));
        QVERIFY(!m_screen->intake.pasteImage());
        settle();
        QVERIFY(item->loadedTypes.isEmpty());
        verifyNothingTaken();
    }

    void takesAChosenFileDuringAReply()
    {
        view().setLoading(true);
        m_screen->intake.handleImportedFile({file(u"a.png"_s, sample())});
        QTRY_VERIFY(view().hasSelectedImage());
    }

    void refusesADropWithoutImages_data()
    {
        QTest::addColumn<QList<QStringList>>("types");
        QTest::newRow("no items") << QList<QStringList>();
        QTest::newRow("no types") << QList<QStringList>{{}};
        QTest::newRow("text") << QList<QStringList>{{u"text/plain"_s, u"text/html"_s}};
        QTest::newRow("unknown image type") << QList<QStringList>{{u"image/x-nobody-knows"_s}};
        QTest::newRow("not quite a type") << QList<QStringList>{{u"image/"_s, u"image"_s, u""_s}};
    }
    void refusesADropWithoutImages()
    {
        QFETCH(QList<QStringList>, types);
        ItemProviders items;
        for (const QStringList &itemTypes : types)
            items.append(fakeItem(itemTypes));
        QVERIFY(!ImageIntake::containsImage(items));
        QVERIFY(!m_screen->intake.handleDrop(items));
        settle();
        verifyNothingTaken();
    }

    void takesTheFirstImageOfADropInItsFirstImageType()
    {
        const auto text = fakeItem({u"text/plain"_s});
        const auto first
            = fakeItem({u"text/uri-list"_s, u"image/tiff"_s, u"image/png"_s}, u"radiografía"_s);
        const auto second = fakeItem({u"image/png"_s});
        QVERIFY(ImageIntake::containsImage({text, first, second}));
        QVERIFY(m_screen->intake.handleDrop({text, first, second}));
        QVERIFY(text->loadedTypes.isEmpty());
        QCOMPARE(first->loadedTypes, QStringList{u"image/tiff"_s});
        QVERIFY(second->loadedTypes.isEmpty());

        first->finish({.error = {}, .data = sample()});
        QVERIFY(!view().hasSelectedImage()); // Never before the event loop runs again
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageData(), sample());
        QCOMPARE(view().selectedImageName(), u"radiografía"_s);
        QCOMPARE(view().selectedImageMimeType(), u"image/tiff"_s);
    }

    void namesADropWithoutAName()
    {
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({item}));
        item->finish({.error = {}, .data = sample()});
        QTRY_COMPARE(view().selectedImageName(), u"imagen"_s);
    }

    void saysWhyADropFailed_data()
    {
        QTest::addColumn<LoadedItem>("item");
        QTest::addColumn<QString>("text");
        QTest::newRow("error") << LoadedItem{.error = u"Se cortó."_s, .data = {}} << u"Se cortó."_s;
        QTest::newRow("error and data")
            << LoadedItem{.error = u"Se cortó."_s, .data = sample()} << u"Se cortó."_s;
        QTest::newRow("neither") << LoadedItem{} << unreadableDrop;
        QTest::newRow("no image") << LoadedItem{.error = {}, .data = "x"} << noImage;
        QTest::newRow("empty") << LoadedItem{.error = {}, .data = QByteArray()} << noImage;
        QTest::newRow("too large")
            << LoadedItem{.error = {}, .data = sampleOfSize(12'582'913)} << tooLarge;
    }
    void saysWhyADropFailed()
    {
        QFETCH(LoadedItem, item);
        QFETCH(QString, text);
        const auto provider = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({provider}));
        provider->finish(item);
        QTRY_COMPARE(view().imageImportError(), text);
        QVERIFY(!view().hasSelectedImage());
    }

    void changesStateOnTheMainThreadOnly()
    {
        QThread *changedOn = nullptr;
        connect(
            &view(), &ContentView::selectedImageChanged, &view(),
            [&] { changedOn = QThread::currentThread(); }, Qt::DirectConnection);
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({item}));
        std::thread([&] { item->finish({.error = {}, .data = sample()}); }).join();
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(changedOn, QThread::currentThread());
    }

    void survivesADropThatEndsAfterIt()
    {
        const auto item = fakeItem({u"image/png"_s});
        QVERIFY(m_screen->intake.handleDrop({item}));
        m_screen.reset();
        item->finish({.error = {}, .data = sample()});
        settle();
    }

    void hasThePreviewOfThePendingImageReady()
    {
        const QByteArray large = encoded(quarters({1500, 1000}), "jpeg");
        QVERIFY(m_screen->intake.pendingPreview().isEmpty());
        m_screen->intake.acceptImage(large, u"a.jpg"_s, u"image/jpeg"_s);
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(m_screen->intake.pendingPreview(), *makePreviewData(large));
        // The bytes that the check made, shared and not encoded again.
        const QByteArray ready = *m_screen->intake.preview(large);
        QCOMPARE(static_cast<const void *>(ready.constData()),
                 static_cast<const void *>(m_screen->intake.pendingPreview().constData()));

        QCOMPARE(m_screen->intake.preview(sample()), makePreviewData(sample()));
        QVERIFY(!m_screen->intake.preview("x"));
        QVERIFY(!m_screen->intake.preview({}));
    }

    void forgetsThePreviewWithTheImage()
    {
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        QTRY_VERIFY(!m_screen->intake.pendingPreview().isEmpty());
        QSignalSpy changes(&m_screen->intake, &ImageIntake::pendingPreviewChanged);
        view().clearSelectedImage();
        QVERIFY(m_screen->intake.pendingPreview().isEmpty());
        QCOMPARE(changes.size(), 1);
    }

    void dropsAPendingImageWhenSwitchedOff()
    {
        m_screen->intake.acceptImage(sample(), u"a.png"_s, u"image/png"_s);
        QTRY_VERIFY(view().hasSelectedImage());
        view().setImageAnalysisEnabled(false);
        QVERIFY(!view().hasSelectedImage());
        QVERIFY(m_screen->intake.pendingPreview().isEmpty());
    }

    void pastesImageData()
    {
        auto *data = new QMimeData;
        data->setData(u"image/png"_s, sample());
        QGuiApplication::clipboard()->setMimeData(data);
        QVERIFY(m_screen->intake.pasteImage());
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageData(), sample());
        QCOMPARE(view().selectedImageName(), u"imagen"_s);
        QCOMPARE(view().selectedImageMimeType(), u"image/png"_s);
    }

    void pastesADecodedPicture()
    {
        QGuiApplication::clipboard()->setImage(quarters({50, 40}));
        QVERIFY(m_screen->intake.pasteImage());
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageName(), u"imagen"_s);
        QVERIFY(showsQuarters(QImage::fromData(*view().selectedImageData())));
    }

    void pastesACopiedFile()
    {
        auto *data = new QMimeData;
        data->setUrls({file(u"a.png"_s, sample())});
        data->setText(path(u"a.png"_s));
        QGuiApplication::clipboard()->setMimeData(data);
        QVERIFY(m_screen->intake.pasteImage());
        QTRY_COMPARE(view().selectedImageName(), u"a.png"_s);
    }

    void leavesTextToTheComposer_data()
    {
        QTest::addColumn<QHash<QString, QByteArray>>("formats");
        using Formats = QHash<QString, QByteArray>;
        QTest::newRow("nothing") << Formats();
        QTest::newRow("text") << Formats{{u"text/plain"_s, "hola"}};
        QTest::newRow("text with its picture")
            << Formats{{u"text/plain"_s, "hola"}, {u"image/png"_s, sample()}};
        QTest::newRow("address of a picture")
            << Formats{{u"text/plain"_s, "https://localhost/a.png"},
                       {u"text/uri-list"_s, "https://localhost/a.png"}};
        QTest::newRow("no picture") << Formats{{u"application/pdf"_s, "%PDF"}};
    }
    void leavesTextToTheComposer()
    {
        using Formats = QHash<QString, QByteArray>;
        QFETCH(Formats, formats);
        auto *data = new QMimeData;
        for (auto it = formats.cbegin(); it != formats.cend(); ++it)
            data->setData(it.key(), it.value());
        QGuiApplication::clipboard()->setMimeData(data);
        QVERIFY(!m_screen->intake.pasteImage());
        settle();
        verifyNothingTaken();
    }

private:
    ContentView &view() { return m_screen->contentView; }

    QString path(const QString &fileName) const { return m_folder->filePath(fileName); }

    QUrl file(const QString &fileName, const QByteArray &bytes) const
    {
        QFile file(path(fileName));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write the sample file");
        return QUrl::fromLocalFile(file.fileName());
    }

    /// Waits until the results of all background work have arrived.
    static void settle()
    {
        Screen probe;
        loadingPool()->waitForDone();
        QCoreApplication::processEvents();
        // One thread decodes, in order: what was asked for before this is done when this is.
        probe.intake.acceptImage(sample(), u"probe"_s, std::nullopt);
        QTRY_VERIFY(probe.contentView.hasSelectedImage());
        QCoreApplication::processEvents();
    }

    void verifyNothingTaken()
    {
        QVERIFY(!view().hasSelectedImage());
        QVERIFY(!view().selectedImageName());
        QVERIFY(!view().selectedImageMimeType());
        QVERIFY(!view().hasImageImportError());
        QVERIFY(m_screen->intake.pendingPreview().isEmpty());
    }

    std::unique_ptr<Screen> m_screen;
    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_MAIN(ImageIntakeTest)
#include "ImageIntakeTest.moc"
