#include "AnswerComposer.h"
#include "ChatEndpoint.h"
#include "ChatServer.h"
#include "RequestLog.h"
#include "ServiceOptions.h"
#include "StudyNotes.h"
#include "UserMemory.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

static void printLine(std::FILE *output, const QString &line)
{
    std::fputs(qUtf8Printable(line + u'\n'), output);
    std::fflush(output);
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const auto parsed = parseServiceOptions(QCoreApplication::arguments().mid(1));
    if (const auto *problem = std::get_if<QString>(&parsed)) {
        printLine(stderr, *problem + u'\n' + serviceUsage());
        return EXIT_FAILURE;
    }

    // Blocked in every thread, so that only the wait below takes them.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGINT);
    sigaddset(&endSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);

    const StudyNotes notes;
    const AnswerComposer composer(notes);
    UserMemory memory;
    ChatEndpoint endpoint(composer, memory);
    RequestLog log(stderr);
    ChatServer server(std::get<ServiceOptions>(parsed), endpoint, log);
    if (const auto problem = server.start()) {
        printLine(stderr, *problem);
        return EXIT_FAILURE;
    }
    printLine(stdout, u"Escuchando en "_s + server.url());

    int signal = 0;
    sigwait(&endSignals, &signal);
    // A client that says nothing would hold up the end for seconds; nothing is lost without it.
    if (!server.stop(std::chrono::seconds(1)))
        std::_Exit(EXIT_SUCCESS);
    return EXIT_SUCCESS;
}
