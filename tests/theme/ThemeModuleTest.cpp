#include <QDir>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

/// The module as a program uses it: found by a static executable through its resources alone.
class ThemeModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsASymbolThatDoesNotExist()
    {
        QQmlEngine engine;
        engine.addImportPath(u":/qt/qml"_s);
        QQmlComponent component(&engine);
        component.setData("import Aulora.Theme\nSymbol { name: \"no.such.symbol\" }", {});
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(u"no symbol is named no.such.symbol"_s));
        const std::unique_ptr<QObject> symbol(component.create());
        QVERIFY2(symbol, qPrintable(component.errorString()));
    }

    void showsTheGallery_data()
    {
        QTest::addColumn<QString>("appearance");

        QTest::newRow("light") << u"light"_s;
        QTest::newRow("dark") << u"dark"_s;
    }
    void showsTheGallery()
    {
        QFETCH(QString, appearance);

        QTest::failOnWarning(QRegularExpression(u".*"_s));
        QQuickView view;
        view.engine()->addImportPath(u":/qt/qml"_s);
        view.setSource(QUrl(u"qrc:/tests/Gallery.qml"_s));
        QVERIFY2(view.errors().isEmpty(), qPrintable(view.errors().value(0).toString()));
        QStringList names = QDir(u":/symbols"_s).entryList();
        for (auto &name : names)
            name.chop(4);
        view.rootObject()->setProperty("symbolNames", names);
        view.rootObject()->setProperty("appearance", appearance);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const QImage shot = view.grabWindow();
        const bool dark = appearance == u"dark";
        QCOMPARE(shot.pixelColor(1, 1), dark ? QColor(0x32, 0x32, 0x32) : QColor(0xec, 0xec, 0xec));
        // For whoever wants to look at it.
        const QString folder = qEnvironmentVariable("AULORA_GALLERY_FOLDER");
        if (!folder.isEmpty())
            QVERIFY(shot.save(u"%1/gallery-%2.png"_s.arg(folder, appearance)));
    }
};

QTEST_MAIN(ThemeModuleTest)
#include "ThemeModuleTest.moc"
