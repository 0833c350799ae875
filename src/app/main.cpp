#include "BackgroundWork.h"
#include "MyApp.h"
#include "ProgramEnd.h"
#include "SingleInstance.h"
#include "UserPreferenceStore.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QThreadPool>

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
/// with exit() for X11, of which nothing in main() learns, and with _exit() for Wayland.
void saveWhenTheDisplayIsLost(QtMsgType type, const QMessageLogContext &context,
                              const QString &message)
{
    printMessage(type, context, message);
    const bool isLost = message.startsWith("The X11 connection broke"_L1)
        || message.startsWith("The Wayland connection"_L1);
    if (isLost && runningApp)
        saveAndEnd();
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
    printMessage = qInstallMessageHandler(saveWhenTheDisplayIsLost);
    const int status = myApp.start() ? QGuiApplication::exec() : EXIT_FAILURE;
    limitTimeToEnd();
    myApp.saveBeforeEnd();
    runningApp = nullptr;
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    quitOnTerminationSignals();
    QGuiApplication::setApplicationName(u"aulora-ia"_s);
    QGuiApplication::setApplicationDisplayName(u"Aulora IA"_s);
    QGuiApplication::setDesktopFileName(u"ar.aulora.AuloraIA"_s);
    // Of the toolkit's file dialog, where the desktop has none. Linking the library that has a
    // function for it would load it at every start.
    qputenv("QT_QUICK_CONTROLS_STYLE", "Basic");
    const QGuiApplication application(argc, argv);
    // The same glyphs everywhere: message text is painted, labels are scene graph nodes. Scaled,
    // Qt 6.4 leaves letters out of such nodes, and its own way of drawing them is as good there.
    if (application.devicePixelRatio() == 1)
        QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    // Where an installed program has its plugins; one that was only built has them beside it.
    QGuiApplication::addLibraryPath(QGuiApplication::applicationDirPath() + u"/../lib/aulora-ia"_s);

    const int status = runProgram();
    // All is saved by now. A read from a mount that no longer answers never ends, a decoder only
    // when it is through: they hold nothing up, and must not find the program half destroyed.
    if (!finishBackgroundWork(300ms)) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
