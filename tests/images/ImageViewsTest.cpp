#include "BackgroundWork.h"
#include "SampleImages.h"

#include <QDir>
#include <QPainter>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// What the engine warned of; nothing here may.
QStringList warnings;

void noteWarning(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings.append(message);
}

const QColor accent = QColor::fromRgbF(0.08F, 0.43F, 0.32F);

bool isNear(const QColor &seen, const QColor &expected, int tolerance = 3)
{
    return std::abs(seen.red() - expected.red()) <= tolerance
        && std::abs(seen.green() - expected.green()) <= tolerance
        && std::abs(seen.blue() - expected.blue()) <= tolerance;
}

} // namespace

/// The chip, the drop overlay and the viewer, measured in a window as they are drawn.
class ImageViewsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        warnings.clear();
        m_previousHandler = qInstallMessageHandler(noteWarning);
    }

    void init()
    {
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImportPath(u":/qt/qml"_s);
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->setSource(QUrl(u"qrc:/tests/ImageViewsStage.qml"_s));
        QVERIFY2(m_view->errors().isEmpty(), qPrintable(m_view->errors().value(0).toString()));
        m_view->resize(1120, 820);
        set("appearance", u"light"_s);
        m_view->show();
        m_view->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }

    void cleanup()
    {
        m_view.reset();
        QVERIFY2(warnings.isEmpty(), qPrintable(warnings.join(u'\n')));
    }

    void cleanupTestCase() { qInstallMessageHandler(m_previousHandler); }

    void chipShowsThumbnailAndName()
    {
        attach(encoded(quarters({300, 200}), "jpeg"), u"radiografía.jpg"_s);
        const QQuickItem *thumbnail = item("thumbnail");
        QTRY_VERIFY(thumbnail->isVisible());
        QCOMPARE(thumbnail->size(), QSizeF(50, 50));
        QCOMPARE(thumbnail->property("radius").toDouble(), 9.0);

        const QQuickItem *caption = item("caption");
        const QQuickItem *name = item("name");
        QCOMPARE(caption->property("text").toString(), u"Imagen adjunta"_s);
        QCOMPARE(caption->property("points").toDouble(), 11.0);
        QCOMPARE(caption->property("weight").toInt(), int(QFont::DemiBold));
        QCOMPARE(name->property("text").toString(), u"radiografía.jpg"_s);
        QCOMPARE(name->property("points").toDouble(), 10.0);
        QCOMPARE(name->property("weight").toInt(), int(QFont::Normal));
        QCOMPARE(name->property("color").value<QColor>(), QColor(0, 0, 0, qRound(0.5 * 255)));
        QCOMPARE(name->y() - caption->y() - caption->height(), 3.0);
        QCOMPARE(name->x(), caption->x());
        // A Row updates its layout when it is polished.
        QTRY_VERIFY(sceneRect(caption).left() > sceneRect(thumbnail).right());
    }

    void chipsThumbnailKeepsProportionsAndClipsCorners()
    {
        attach(encoded(quarters({300, 100}), "jpeg"), u"ancha.jpg"_s);
        QTRY_VERIFY(item("thumbnail")->isVisible());
        const QImage shot = grab(u"chip"_s);
        const QRect rect = sceneRect(item("thumbnail")).toRect();
        // The middle of the wide picture fills the square; its quarters meet in the centre.
        QVERIFY(showsQuarters(shot.copy(rect)));
        const QColor corner = shot.pixelColor(rect.topLeft());
        QVERIFY2(!isNear(corner, Qt::red, 60), qPrintable(corner.name()));
    }

    void chipWithoutAPictureHasNoThumbnail()
    {
        attach("no es una imagen", u"imagen"_s);
        decodingPool()->waitForDone();
        QCoreApplication::processEvents();
        QVERIFY(!item("thumbnail")->isVisible());
        QVERIFY(sceneRect(item("caption")).left() < sceneRect(item("chip")).left() + 20);
        QCOMPARE(item("name")->property("text").toString(), u"imagen"_s);
    }

    void chipKeepsLongNamesShort()
    {
        attach(encoded(quarters({40, 40}), "png"),
               QString(u"a<b>nombre</b> "_s).repeated(2000) + u".png"_s);
        QTRY_VERIFY(item("thumbnail")->isVisible());
        QTRY_VERIFY(item("chip")->width() > 300); // It has made room for the thumbnail
        QVERIFY(item("name")->width() <= 260);
        QVERIFY(item("chip")->width() < 420);
        QCOMPARE(item("name")->property("lineCount").toInt(), 1);
    }

    void chipShowsANameWithALineFeedOnOneLine()
    {
        attach(encoded(quarters({40, 40}), "png"), u"tórax\nfrente.png"_s);
        QCOMPARE(item("name")->property("text").toString(), u"tórax frente.png"_s);
        QCOMPARE(item("name")->property("lineCount").toInt(), 1);
        QVERIFY(!item("name")->property("truncated").toBool());
    }

    void chipsButtonRemovesTheImage()
    {
        attach(encoded(quarters({40, 40}), "png"), u"a.png"_s);
        QQuickItem *remove = item("remove");
        QCOMPARE(remove->property("text").toString(), u"Quitar imagen"_s);
        QVERIFY(remove->inherits("QQuickAbstractButton")); // Its text is its accessible name
        click(remove);
        QCOMPARE(root()->property("removals").toInt(), 1);
        remove->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(m_view.get(), Qt::Key_Space);
        QCOMPARE(root()->property("removals").toInt(), 2);
        QTest::keyClick(m_view.get(), Qt::Key_Return);
        QCOMPARE(root()->property("removals").toInt(), 3);
    }

    void overlayIsDrawnToMeasure()
    {
        set("dropPresented", true);
        QTRY_COMPARE(item("overlay")->opacity(), 1.0);
        const QQuickItem *frame = item("frame");
        QCOMPARE(sceneRect(frame), QRectF(24, 24, 1120 - 48, 820 - 48));
        QCOMPARE(frame->property("radius").toDouble(), 22.0);
        QCOMPARE(frame->property("borderWidth").toDouble(), 2.0);
        QCOMPARE(frame->property("dashPattern").value<QList<double>>(), QList<double>({9, 7}));
        QVERIFY(isNear(frame->property("color").value<QColor>(), accent));
        QVERIFY(std::abs(frame->property("color").value<QColor>().alphaF() - 0.055F) < 0.003F);

        const QQuickItem *panel = item("panel");
        QCOMPARE(panel->property("radius").toDouble(), 18.0);
        QVERIFY(std::abs(sceneRect(panel).center().x() - 560) <= 0.5);
        QVERIFY(std::abs(sceneRect(panel).center().y() - 410) <= 0.5);
        const QQuickItem *icon = item("icon");
        QCOMPARE(icon->size(), QSizeF(64, 64));
        QCOMPARE(sceneRect(icon).top() - sceneRect(panel).top(), 30.0);
        QVERIFY(std::abs(sceneRect(icon).center().x() - sceneRect(panel).center().x()) <= 0.5);
        QVERIFY(isNear(icon->property("color").value<QColor>(), accent));
        QVERIFY(std::abs(icon->property("color").value<QColor>().alphaF() - 0.09F) < 0.003F);
        const QQuickItem *symbol = icon->childItems().value(0);
        QVERIFY(symbol);
        QCOMPARE(symbol->property("name").toString(), u"photo.badge.plus"_s);
        QCOMPARE(symbol->property("size").toDouble(), 27.0);
        QCOMPARE(symbol->property("weight").toInt(), int(QFont::Medium));
        QVERIFY(isNear(symbol->property("color").value<QColor>(), accent));
        QCOMPARE(symbol->property("color").value<QColor>().alpha(), 255);
        const QQuickItem *title = item("title");
        QCOMPARE(title->property("text").toString(), u"Soltá la imagen para analizarla"_s);
        QCOMPARE(title->property("points").toDouble(), 17.0);
        QCOMPARE(title->property("weight").toInt(), int(QFont::DemiBold));
        QCOMPARE(sceneRect(title).top() - sceneRect(icon).bottom(), 13.0);
        QVERIFY(std::abs(sceneRect(title).center().x() - sceneRect(panel).center().x()) <= 0.5);
        const QQuickItem *line = item("line");
        QCOMPARE(line->property("text").toString(),
                 u"Aulora IA puede analizar imágenes médicas con finalidad educativa."_s);
        QCOMPARE(line->property("points").toDouble(), 11.5);
        QCOMPARE(line->property("color").value<QColor>(), QColor(0, 0, 0, qRound(0.5 * 255)));
        QCOMPARE(sceneRect(line).top() - sceneRect(title).bottom(), 13.0);
        QCOMPARE(sceneRect(panel).bottom() - sceneRect(line).bottom(), 30.0);
        QCOMPARE(sceneRect(line).left() - sceneRect(panel).left(), 30.0);
        grab(u"overlay"_s);
    }

    void overlayFadesInAndOut()
    {
        const QQuickItem *overlay = item("overlay");
        QVERIFY(!overlay->isVisible());
        // It starts at its old value and reaches the new one.
        set("dropPresented", true);
        QVERIFY(overlay->opacity() < 0.5);
        QTRY_COMPARE(overlay->opacity(), 1.0);
        set("dropPresented", false);
        QVERIFY(overlay->opacity() > 0.5);
        QVERIFY(overlay->isVisible());
        QTRY_VERIFY(!overlay->isVisible());
    }

    void viewerFitsThePicture_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSizeF>("shown");
        QTest::newRow("portrait") << QSize(350, 700) << QSizeF(378, 756);
        QTest::newRow("landscape") << QSize(700, 350) << QSizeF(1056, 528);
        QTest::newRow("small") << QSize(10, 10) << QSizeF(756, 756);
        QTest::newRow("thread") << QSize(700, 1) << QSizeF(1056, 1056.0 / 700);
    }
    void viewerFitsThePicture()
    {
        QFETCH(QSize, size);
        QFETCH(QSizeF, shown);
        open(encoded(quarters(size), "jpeg"));
        QTRY_VERIFY(!pictureRect().isEmpty());
        const QRectF rect = sceneRect(item("picture"));
        QCOMPARE(rect, QRectF(32, 32, 1120 - 64, 820 - 64));
        QCOMPARE(pictureRect().size(), shown);
        QVERIFY((pictureRect().center() - QPointF(rect.width() / 2, rect.height() / 2))
                    .manhattanLength()
                < 0.01);
    }

    void viewerFollowsTheWindow()
    {
        open(encoded(quarters({700, 350}), "jpeg"));
        m_view->resize(940, 700);
        QTRY_COMPARE(pictureRect().size(), QSizeF(876, 438));
    }

    void viewerIsDrawnToMeasure()
    {
        open(encoded(quarters({700, 500}), "jpeg"));
        QTRY_VERIFY(!pictureRect().isEmpty());
        const QImage shot = grab(u"viewer"_s);
        // White behind black at 94 %.
        QVERIFY(isNear(shot.pixelColor(8, 400), QColor(15, 15, 15)));
        const QPoint origin = (pictureRect().topLeft() + QPointF(32, 32)).toPoint();
        QVERIFY(showsQuarters(shot.copy({origin, pictureRect().size().toSize()})));

        QQuickItem *close = item("close");
        QCOMPARE(sceneRect(close).right(), 1120.0 - 22);
        QCOMPARE(sceneRect(close).top(), 22.0);
        const auto *symbol = close->property("contentItem").value<QQuickItem *>();
        QCOMPARE(symbol->property("name").toString(), u"xmark.circle.fill"_s);
        QCOMPARE(symbol->property("size").toDouble(), 24.0);
        QCOMPARE(symbol->property("weight").toInt(), int(QFont::Medium));
        const auto color = symbol->property("color").value<QColor>();
        QCOMPARE(color.rgb(), QColor(Qt::white).rgb());
        QVERIFY(std::abs(color.alphaF() - 0.88F) < 0.003F);
        QCOMPARE(close->property("text").toString(), u"Cerrar imagen"_s);
        QVERIFY(close->inherits("QQuickAbstractButton")); // Its text is its accessible name
    }

    void viewerClosesByItsButtonAlone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("picture") << encoded(quarters({70, 50}), "jpeg");
        QTest::newRow("no picture") << QByteArray("no es una imagen");
    }
    void viewerClosesByItsButtonAlone()
    {
        QFETCH(QByteArray, bytes);
        open(bytes);
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, {300, 300});
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, {5, 5});
        QCOMPARE(root()->property("closings").toInt(), 0);
        click(item("close"));
        QCOMPARE(root()->property("closings").toInt(), 1);
        QTRY_VERIFY(!viewer()->property("visible").toBool());
    }

    void viewerClosesByEscapeOnce()
    {
        open(encoded(quarters({70, 50}), "jpeg"));
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
        QTRY_COMPARE(root()->property("closings").toInt(), 1);
        QTRY_VERIFY(!viewer()->property("visible").toBool());
    }

    void viewerHoldsTheKeyboardAndGivesItBack()
    {
        QQuickItem *composer = item("composer");
        QTRY_VERIFY(composer->hasActiveFocus());
        open(encoded(quarters({70, 50}), "jpeg"));
        QTRY_VERIFY(item("close")->hasActiveFocus());
        for (int i = 0; i < 5; ++i) {
            QTest::keyClick(m_view.get(), Qt::Key_Tab);
            QVERIFY(item("close")->hasActiveFocus());
        }
        QTest::keyClick(m_view.get(), Qt::Key_Return);
        QTRY_VERIFY(composer->hasActiveFocus());
    }

    void viewerShowsWhatWasOpenedLast()
    {
        open(encoded(quarters({700, 350}), "jpeg"));
        QTRY_COMPARE(pictureRect().size(), QSizeF(1056, 528));
        set("enlargedBytes", encoded(quarters({350, 700}), "jpeg"));
        QTRY_COMPARE(pictureRect().size(), QSizeF(378, 756));
        set("enlargedBytes", QByteArray("no es una imagen"));
        QTRY_VERIFY(pictureRect().isEmpty());
    }

    void looksRightInTheDark()
    {
        set("appearance", u"dark"_s);
        attach(encoded(quarters({300, 200}), "jpeg"), u"radiografía.jpg"_s);
        QTRY_VERIFY(item("thumbnail")->isVisible());
        QCOMPARE(item("name")->property("color").value<QColor>().rgb(), QColor(Qt::white).rgb());
        grab(u"chip-dark"_s);
        set("dropPresented", true);
        QTRY_COMPARE(item("overlay")->opacity(), 1.0);
        QVERIFY(isNear(item("frame")->property("color").value<QColor>(), accent));
        grab(u"overlay-dark"_s);
    }

private:
    QQuickItem *root() const { return m_view->rootObject(); }

    QObject *viewer() const { return root()->findChild<QObject *>(u"viewer"_s); }

    /// The item with that object name, also inside of what is presented over the window.
    QQuickItem *item(const char *name) const
    {
        if (auto *found = root()->findChild<QQuickItem *>(QString::fromLatin1(name)))
            return found;
        if (auto *found = m_view->contentItem()->findChild<QQuickItem *>(QString::fromLatin1(name)))
            return found;
        auto *content = viewer()->property("contentItem").value<QQuickItem *>();
        return content->findChild<QQuickItem *>(QString::fromLatin1(name));
    }

    void set(const char *property, const QVariant &value) { root()->setProperty(property, value); }

    void attach(const QByteArray &bytes, const QString &name)
    {
        set("pendingBytes", bytes);
        set("pendingName", name);
    }

    void open(const QByteArray &bytes)
    {
        set("enlargedBytes", bytes);
        set("viewerPresented", true);
        QTRY_VERIFY(viewer()->property("opened").toBool());
    }

    QRectF pictureRect() const { return item("picture")->property("pictureRect").toRectF(); }

    static QRectF sceneRect(const QQuickItem *item)
    {
        return item->mapRectToScene(QRectF({}, item->size()));
    }

    void click(QQuickItem *item)
    {
        QTest::mouseClick(m_view.get(), Qt::LeftButton, {}, sceneRect(item).center().toPoint());
    }

    /// The window as drawn, kept as `name`.png in the folder AULORA_SHOTS names, if it does.
    QImage grab(const QString &name)
    {
        QImage shot = m_view->grabWindow();
        const QString folder = qEnvironmentVariable("AULORA_SHOTS");
        if (!folder.isEmpty() && !shot.save(QDir(folder).filePath(name + u".png"_s)))
            qFatal("cannot keep the picture");
        return shot;
    }

    std::unique_ptr<QQuickView> m_view;
    QtMessageHandler m_previousHandler = nullptr;
};

QTEST_MAIN(ImageViewsTest)
#include "ImageViewsTest.moc"
