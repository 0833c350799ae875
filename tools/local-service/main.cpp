#include "AnswerComposer.h"
#include "ChatEndpoint.h"
#include "ChatServer.h"
#include "EndNotice.h"
#include "ModelAssistant.h"
#include "RequestLog.h"
#include "ServiceOptions.h"
#include "StudyNotes.h"
#include "UserMemory.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>
#include <variant>

using namespace Qt::StringLiterals;

static void printLine(std::FILE *output, const QString &line)
{
    std::fputs(qUtf8Printable(line + u'\n'), output);
    std::fflush(output);
}

// The key in `file`, without the line end that editors leave; a sentence when it cannot be used.
static std::variant<QByteArray, QString> readKey(const QString &file)
{
    constexpr qint64 longestKey = 4096;
    QFile opened(file);
    if (!opened.open(QIODevice::ReadOnly))
        return u"No pude leer la clave del modelo en %1."_s.arg(file);
    const QByteArray key = opened.read(longestKey).trimmed();
    const bool isHeaderText
        = std::all_of(key.begin(), key.end(), [](char c) { return c > ' ' && c < '\x7f'; });
    if (key.isEmpty() || !isHeaderText)
        return u"En %1 no hay una clave que se pueda usar."_s.arg(file);
    return key;
}

// Erases in time what was said in conversations that ended, whether or not anybody asks anything.
static void keepForgetting(UserMemory &memory, EndNotice &end)
{
    while (end.sleepUntil(std::chrono::steady_clock::now() + std::chrono::minutes(1)))
        memory.forgetOld();
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

    auto options = std::get<ServiceOptions>(parsed);
    RequestLog log(stderr);
    const StudyNotes notes;
    const AnswerComposer composer(notes);
    UserMemory memory(options.memoryFile, [&log](const QString &problem) {
        log.writeNotice(u"No puedo recordar nada: "_s + problem);
    });
    std::unique_ptr<ModelAssistant> model;
    if (options.model) {
        if (!options.model->keyFile.isEmpty()) {
            const auto key = readKey(options.model->keyFile);
            if (const auto *problem = std::get_if<QString>(&key)) {
                printLine(stderr, *problem);
                return EXIT_FAILURE;
            }
            options.model->service.key = std::get<QByteArray>(key);
        }
        model = std::make_unique<ModelAssistant>(options.model->service, options.model->images,
                                                 options.model->mostPerMinute, notes);
    }
    ChatEndpoint endpoint(notes, composer, memory, model.get());
    ChatServer server(options, endpoint, log);
    if (const auto problem = server.start()) {
        printLine(stderr, *problem);
        return EXIT_FAILURE;
    }
    printLine(stdout, u"Escuchando en "_s + server.url());

    EndNotice end;
    std::thread forgetting([&] { keepForgetting(memory, end); });
    int signal = 0;
    sigwait(&endSignals, &signal);
    end.announce();
    forgetting.join();
    // A client that says nothing would hold up the end for seconds; nothing is lost without it.
    if (!server.stop(std::chrono::seconds(1)))
        std::_Exit(EXIT_SUCCESS);
    return EXIT_SUCCESS;
}
