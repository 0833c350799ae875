#include <QDir>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

using namespace Qt::StringLiterals;

/// The module as a program uses it: found by a static executable through its resources alone.
class ThemeModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheGallery()
    {
        QQuickView view;
        view.engine()->addImportPath(u":/qt/qml"_s);
        view.setSource(QUrl(u"qrc:/tests/Gallery.qml"_s));
        QVERIFY2(view.errors().isEmpty(), qPrintable(view.errors().value(0).toString()));
        QStringList names = QDir(u":/symbols"_s).entryList();
        for (auto &name : names)
            name.chop(4);
        view.rootObject()->setProperty("symbolNames", names);
        view.rootObject()->setProperty("appearance", qEnvironmentVariable("AULORA_APPEARANCE"));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const QImage shot = view.grabWindow();
        QVERIFY(!shot.isNull());
        const QString path = qEnvironmentVariable("AULORA_SHOT");
        if (!path.isEmpty())
            QVERIFY(shot.save(path));
    }
};

QTEST_MAIN(ThemeModuleTest)
#include "ThemeModuleTest.moc"
