#include "ImageDropArea.h"

#include "SampleImages.h"
#include "Screen.h"

#include <QDropEvent>
#include <QMimeData>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

/// Drags over a window, as the desktop delivers them.
class ImageDropAreaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_screen = std::make_unique<Screen>();
        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(400, 300);
        m_area = new ImageDropArea(m_window->contentItem());
        m_area->setSize({400, 300});
        m_area->setIntake(&m_screen->intake);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_mimeData = std::make_unique<QMimeData>();
    }

    void cleanup()
    {
        m_window.reset();
        m_screen.reset();
    }

    void takesImageData()
    {
        const QByteArray bytes = encoded(quarters({50, 40}), "png");
        m_mimeData->setData(u"text/html"_s, "<img>");
        m_mimeData->setData(u"image/png"_s, bytes);
        QVERIFY(enter());
        QVERIFY(m_area->isTargeted());
        QVERIFY(move());
        QVERIFY(drop());
        QVERIFY(!m_area->isTargeted());
        QTRY_VERIFY(view().hasSelectedImage());
        QCOMPARE(view().selectedImageData(), bytes);
        QCOMPARE(view().selectedImageName(), u"imagen"_s);
        QCOMPARE(view().selectedImageMimeType(), u"image/png"_s);
    }

    void takesTheFirstImageFileAndNeverMovesIt()
    {
        const QTemporaryDir folder;
        const QByteArray bytes = encoded(quarters({50, 40}), "jpeg");
        QList<QUrl> urls;
        for (const QString &name : {u"notas.txt"_s, u"a b.jpg"_s, u"c.png"_s}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(bytes), bytes.size());
            urls.append(QUrl::fromLocalFile(file.fileName()));
        }
        m_mimeData->setUrls(urls);
        QVERIFY(enter(Qt::MoveAction | Qt::CopyAction));
        QCOMPARE(m_dropAction, Qt::CopyAction);
        QVERIFY(drop(Qt::MoveAction | Qt::CopyAction));
        QCOMPARE(m_dropAction, Qt::CopyAction);
        QTRY_COMPARE(view().selectedImageName(), u"a b.jpg"_s);
        QCOMPARE(view().selectedImageData(), bytes);
        QCOMPARE(view().selectedImageMimeType(), u"image/jpeg"_s);
    }

    void prefersDataToAnAddressElsewhere()
    {
        const QByteArray bytes = encoded(quarters({50, 40}), "png");
        m_mimeData->setUrls({QUrl(u"https://localhost/other.jpg"_s)});
        m_mimeData->setData(u"image/png"_s, bytes);
        QVERIFY(enter());
        QVERIFY(drop());
        QTRY_COMPARE(view().selectedImageData(), bytes);
    }

    void saysThatAnAddressElsewhereCannotBeRead()
    {
        m_mimeData->setUrls({QUrl(u"https://localhost/other.jpg"_s)});
        QVERIFY(enter());
        QVERIFY(drop());
        QTRY_COMPARE(view().imageImportError(), u"No pude leer la imagen arrastrada."_s);
    }

    void letsOtherDragsPass_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("text") << u"text/plain"_s << QByteArray("hola");
        QTest::newRow("html") << u"text/html"_s << QByteArray("<b>hola</b>");
        QTest::newRow("text file") << u"text/uri-list"_s << QByteArray("file:///tmp/notas.txt\r\n");
        QTest::newRow("page") << u"text/uri-list"_s << QByteArray("https://localhost/\r\n");
    }
    void letsOtherDragsPass()
    {
        QFETCH(QString, format);
        QFETCH(QByteArray, data);
        m_mimeData->setData(format, data);
        QVERIFY(!enter());
        QVERIFY(!m_area->isTargeted());
        QVERIFY(!drop());
        QVERIFY(!view().hasImageImportError());
    }

    void isNoTargetWhileADropWouldBeRefused_data() { whatAllowsDrops(); }
    void isNoTargetWhileADropWouldBeRefused()
    {
        QFETCH(Allow, allow);
        m_mimeData->setData(u"image/png"_s, encoded(quarters({50, 40}), "png"));
        for (const auto &end :
             {std::function([this] { leave(); }), std::function([this] { QVERIFY(!drop()); })}) {
            allow(view(), false);
            QVERIFY(!enter());
            QVERIFY(!m_area->isTargeted());
            end();
            allow(view(), true);
            QVERIFY(!m_area->isTargeted()); // The drag is over
        }
    }

    void isNoTargetOnceTheDropWouldBeRefused_data() { whatAllowsDrops(); }
    void isNoTargetOnceTheDropWouldBeRefused()
    {
        QFETCH(Allow, allow);
        m_mimeData->setData(u"image/png"_s, encoded(quarters({50, 40}), "png"));
        QVERIFY(enter());
        QVERIFY(m_area->isTargeted());
        allow(view(), false);
        QVERIFY(!m_area->isTargeted());
        QVERIFY(!move());
        QVERIFY(!m_area->isTargeted());
        allow(view(), true);
        QVERIFY(move());
        QVERIFY(m_area->isTargeted());
        allow(view(), false);
        QVERIFY(!drop());
        allow(view(), true);
        QVERIFY(!m_area->isTargeted()); // The drag is over
        QVERIFY(!view().hasImageImportError());
    }

    void forgetsADragThatLeaves()
    {
        m_mimeData->setData(u"image/png"_s, "x");
        QSignalSpy changes(m_area, &ImageDropArea::isTargetedChanged);
        QVERIFY(enter());
        leave();
        QVERIFY(!m_area->isTargeted());
        QCOMPARE(changes.size(), 2);
    }

private:
    using Allow = std::function<void(ContentView &, bool)>;

    static void whatAllowsDrops()
    {
        QTest::addColumn<Allow>("allow");
        QTest::newRow("image analysis") << Allow(
            [](ContentView &view, bool allowed) { view.setImageAnalysisEnabled(allowed); });
        QTest::newRow("no reply under way")
            << Allow([](ContentView &view, bool allowed) { view.setLoading(!allowed); });
    }

    ContentView &view() { return m_screen->contentView; }

    void leave()
    {
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(m_window.get(), &event);
    }

    template <typename Event>
    bool send(Event event)
    {
        QCoreApplication::sendEvent(m_window.get(), &event);
        m_dropAction = event.dropAction();
        return event.isAccepted();
    }

    bool enter(Qt::DropActions actions = Qt::CopyAction)
    {
        return send(QDragEnterEvent({20, 20}, actions, m_mimeData.get(), Qt::LeftButton, {}));
    }

    bool move()
    {
        return send(QDragMoveEvent({30, 30}, Qt::CopyAction, m_mimeData.get(), Qt::LeftButton, {}));
    }

    bool drop(Qt::DropActions actions = Qt::CopyAction)
    {
        return send(QDropEvent({30, 30}, actions, m_mimeData.get(), Qt::LeftButton, {}));
    }

    std::unique_ptr<Screen> m_screen;
    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<QMimeData> m_mimeData;
    ImageDropArea *m_area = nullptr;
    Qt::DropAction m_dropAction = Qt::IgnoreAction;
};

QTEST_MAIN(ImageDropAreaTest)
#include "ImageDropAreaTest.moc"
