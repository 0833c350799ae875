#include "MyApp.h"

#include "ApplicationIcon.h"
#include "BuildNames.h"

#include <QFile>
#include <QQmlComponent>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace {

AssistantService assistantServiceOfThisBuild()
{
    AssistantService service;
    service.apiURL = QUrl(u"https://%1/api/chat"_s.arg(buildServiceHost));
    // A build without an extra trust anchor has no such file.
    QFile trustAnchors(u":/aulora/trust-anchors.pem"_s);
    if (trustAnchors.open(QIODevice::ReadOnly))
        service.extraTrustAnchors = trustAnchors.readAll();
    return service;
}

} // namespace

MyApp::MyApp(std::unique_ptr<PreferenceStore> store, QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_historyStore(m_store.get())
    , m_identity(m_store.get())
    , m_contentView(m_store.get(), &m_historyStore)
    , m_imageIntake(&m_contentView)
    , m_sendFlow(
          &m_contentView, &m_identity,
          [this](const QByteArray &image) { return m_imageIntake.preview(image); },
          assistantServiceOfThisBuild(),
          [this](std::function<void()> send) { m_imageIntake.whenSettled(std::move(send)); })
{ }

bool MyApp::start()
{
    m_engine.addImportPath(u":/qt/qml"_s);
    // Qt compiles the window's QML on its own thread while this one reads the history.
    const QUrl mainWindow(u"qrc:/qt/qml/Aulora/MainWindow.qml"_s);
    const QQmlComponent types(&m_engine, mainWindow, QQmlComponent::Asynchronous);
    m_contentView.loadHistory();
    m_engine.setInitialProperties({
        {u"contentView"_s, QVariant::fromValue(&m_contentView)},
        {u"sendFlow"_s, QVariant::fromValue(&m_sendFlow)},
        {u"imageIntake"_s, QVariant::fromValue(&m_imageIntake)},
        {u"authorLine"_s, buildAuthorLine.toString()},
        {u"credentialsLine"_s, buildCredentialsLine.toString()},
    });
    m_engine.load(mainWindow);
    auto *window = qobject_cast<QQuickWindow *>(m_engine.rootObjects().value(0));
    if (!window)
        return false;
    // Painting the icon takes a few milliseconds that the first frame need not wait for.
    connect(
        window, &QQuickWindow::frameSwapped, window,
        [window] { window->setIcon(applicationIcon()); },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    return true;
}

void MyApp::raiseWindow()
{
    if (auto *window = qobject_cast<QQuickWindow *>(m_engine.rootObjects().value(0))) {
        window->show();
        window->raise();
        window->requestActivate();
    }
}

void MyApp::saveBeforeEnd()
{
    // A question that waits for its image is saved without it.
    m_imageIntake.cancelJobs();
    m_sendFlow.saveCutReply();
    m_store->flush();
}
