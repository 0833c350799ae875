#include "SampleConversations.h"
#include "SampleInputMethod.h"
#include "SamplePictures.h"
#include "SampleProgram.h"

#include <QQmlEngine>
#include <QQmlError>
#include <QtQuickTest>

/// Makes the program's modules known to every test, and counts what QML warns of meanwhile.
class QmlTestSetup : public QObject
{
    Q_OBJECT

public:
    qsizetype warningCount() const { return m_warningCount; }

public Q_SLOTS:
    // The test runner finds this slot by its name.
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        connect(engine, &QQmlEngine::warnings, this,
                [this](const QList<QQmlError> &warnings) { m_warningCount += warnings.size(); });
    }

private:
    qsizetype m_warningCount = 0;
};

int main(int argc, char *argv[])
{
    qmlRegisterType<SampleConversations>("Aulora.Test", 1, 0, "SampleConversations");
    qmlRegisterType<SampleInputMethod>("Aulora.Test", 1, 0, "SampleInputMethod");
    qmlRegisterType<SamplePictures>("Aulora.Test", 1, 0, "SamplePictures");
    qmlRegisterType<SampleProgram>("Aulora.Test", 1, 0, "SampleProgram");
    QmlTestSetup setup;
    const int failures
        = quick_test_main_with_setup(argc, argv, "qml", QML_TEST_SOURCE_DIRECTORY, &setup);
    if (setup.warningCount() > 0)
        qCritical("%lld QML warnings; there may be none", qlonglong(setup.warningCount()));
    return failures != 0 || setup.warningCount() > 0 ? 1 : 0;
}

#include "main.moc"
