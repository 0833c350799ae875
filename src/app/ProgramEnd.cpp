#include "ProgramEnd.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto endTimeLimit = 5s;

std::atomic<bool> endRequested = false;
std::atomic<bool> isAllSaved = false;

} // namespace

void quitOnTerminationSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN)
            sigaddset(&signals, signal);
    }
    // Blocked in this thread and so in all that it starts, the signals reach only the thread that
    // waits for them.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([signals] {
        int signal = 0;
        sigwait(&signals, &signal);
        endRequested = true;
        limitTimeToEnd();
        QCoreApplication::quit();
    }).detach();
}

bool isEndRequested()
{
    return endRequested;
}

void limitTimeToEnd()
{
    std::thread([] {
        std::this_thread::sleep_for(endTimeLimit);
        if (isAllSaved)
            std::_Exit(EXIT_SUCCESS);
        std::fputs("Error guardando historial: el disco no respondió a tiempo.\n", stdout);
        std::fflush(stdout);
        std::_Exit(EXIT_FAILURE);
    }).detach();
}

void noteAllSaved()
{
    isAllSaved = true;
}
