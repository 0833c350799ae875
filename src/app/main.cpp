#include "BackgroundWork.h"
#include "MyApp.h"
#include "ProgramEnd.h"
#include "SingleInstance.h"
#include "UserPreferenceStore.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QThread>
#include <QThreadPool>

#include <csignal>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The running program, for when Qt ends the process by itself.
MyApp *runningApp = nullptr;

/// Saves and ends the process without destroying anything, since its threads still run.
void saveAndEnd()
{
    limitTimeToEnd();
    runningApp->saveBeforeEnd();
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

QtMessageHandler printMessage = nullptr;

/// Qt prints one of these messages when the display is gone, and then ends the process by itself:
/// with exit() for X11, which does not return to main(), and with _exit() for Wayland.
void saveWhenTheDisplayIsLost(QtMsgType type, const QMessageLogContext &context,
                              const QString &message)
{
    printMessage(type, context, message);
    if (!runningApp)
        return;
    if (message.startsWith("The X11 connection broke"_L1))
        saveAndEnd();
    // Qt 6.4 may print this on another thread. Qt 6.5 and newer can connect again.
    if (message.startsWith("The Wayland connection"_L1)) {
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
        limitTimeToEnd(); // the program's own thread may be waiting for this one
#endif
        const bool isOwnThread = QThread::currentThread() == runningApp->thread();
        QMetaObject::invokeMethod(runningApp, &MyApp::saveBeforeEnd,
                                  isOwnThread ? Qt::DirectConnection
                                              : Qt::BlockingQueuedConnection);
    }
}

/// From the first window to the last thing saved; returns the program's exit status.
int runProgram()
{
    SingleInstance instance(userDataFolder());
    switch (instance.claim()) {
    case SingleInstance::Outcome::First:
        break;
    case SingleInstance::Outcome::RaisedOther:
        return EXIT_SUCCESS;
    case SingleInstance::Outcome::NoAnswer:
        std::fputs("Aulora IA ya está en marcha y no responde.\n", stderr);
        return EXIT_FAILURE;
    }

    // The list of the machine's fonts takes long to read for the first time, and the first text
    // waits for it: it is read while the window is being made.
    QThreadPool::globalInstance()->start([] { QFontDatabase::families(); });

    MyApp myApp(makeUserPreferenceStore());
    QObject::connect(&instance, &SingleInstance::raiseRequested, &myApp, &MyApp::raiseWindow);
    runningApp = &myApp;
    // Another thread may print at any time, so the old handler is stored before it is replaced.
    printMessage = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(saveWhenTheDisplayIsLost);
    // A signal that came before the event loop runs.
    QMetaObject::invokeMethod(
        &myApp,
        [] {
            if (isEndRequested())
                QCoreApplication::quit();
        },
        Qt::QueuedConnection);
    const int status = myApp.start() ? QGuiApplication::exec() : EXIT_FAILURE;
    instance.stopListening();
    limitTimeToEnd();
    myApp.saveBeforeEnd();
    noteAllSaved();
    runningApp = nullptr;
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    quitOnTerminationSignals();
    // Printing to a closed pipe must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    QGuiApplication::setApplicationName(u"aulora-ia"_s);
    QGuiApplication::setApplicationDisplayName(u"Aulora IA"_s);
    QGuiApplication::setDesktopFileName(u"ar.aulora.AuloraIA"_s);
    const QGuiApplication application(argc, argv);
    // The same glyphs everywhere: message text is painted, labels are scene graph nodes. At other
    // scale factors Qt 6.4 leaves letters out of such nodes, so Qt draws labels its own way.
    if (application.devicePixelRatio() == 1)
        QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    // Where an installed program has its plugins; one that was only built has them beside it.
    QGuiApplication::addLibraryPath(QGuiApplication::applicationDirPath() + u"/../lib/aulora-ia"_s);

    const int status = runProgram();
    // Everything is saved by now. A read from a mount that does not answer never ends, and decoding
    // cannot be stopped: end without waiting for them, and without destroying what they use.
    if (!finishBackgroundWork(300ms)) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
