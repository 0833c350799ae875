#include "FigureReporter.h"
#include "LineDecoder.h"
#include "ReplyTask.h"
#include "ResourceUse.h"
#include "ScriptedServer.h"
#include "TestChat.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr qsizetype chunkSize = qsizetype(64) * 1024;

const QByteArray &spanishLine()
{
    static const QByteArray line
        = "- **Clínica:** disnea, ortopnea y edemas; auscultá también el tercer ruido.\n";
    return line;
}

const QByteArray &spanishChunk()
{
    static const QByteArray chunk
        = spanishLine().repeated(chunkSize / spanishLine().size() + 1).first(chunkSize);
    return chunk;
}

void decodeLines(benchmark::State &state)
{
    LineDecoder decoder;
    for (auto _ : state)
        benchmark::DoNotOptimize(decoder.decode(spanishChunk()));
    state.SetBytesProcessed(state.iterations() * chunkSize);
}

/// What no decoder can skip: the same bytes as text, in one piece and with every line in it.
void decodeLinesFloor(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(QString::fromUtf8(spanishChunk()));
    state.SetBytesProcessed(state.iterations() * chunkSize);
}

/// A reply of so many lines, each in a chunk of its own, from bytes to the list models. The floor
/// of ten times the lines is the reply of a thousand.
void reply(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        TestChat chat{AssistantService()};
        ReplyTask task(&chat.view, QUuid::createUuid(), *chat.view.selectedConversationID());
        LineDecoder decoder;
        state.ResumeTiming();
        for (int64_t i = 0; i < state.range(0); ++i)
            task.appendLines(decoder.decode(spanishLine()));
        task.finish();
        // What the store does with the history afterwards is measured elsewhere.
        state.PauseTiming();
        chat.store.flush();
        state.ResumeTiming();
    }
}

/// The largest image sent over loopback: what the call costs the main thread, and the longest turn
/// of its event loop until the reply has come.
void sendLargestImage(benchmark::State &state)
{
    const TestAuthority authority;
    ScriptedServer server(authority.issue("localhost"), [](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nuno\n");
        connection.close();
    });
    const QByteArray image(12'582'912, 'x');
    Milliseconds worstCall{};
    Milliseconds worstTurn{};
    for (auto _ : state) {
        TestChat chat({.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(server.port())),
                       .extraTrustAnchors = authority.certificate()});
        chat.view.setSelectedImage(image, u"placa.png"_s, u"image/png"_s);
        auto start = threadTime();
        chat.send(u"¿Qué se ve?"_s);
        worstCall = std::max<Milliseconds>(worstCall, threadTime() - start);
        QEventLoop loop;
        QObject::connect(&chat.view, &ContentView::isLoadingChanged, &loop, &QEventLoop::quit);
        QTimer everyTurn;
        start = threadTime();
        QObject::connect(&everyTurn, &QTimer::timeout, &loop, [&] {
            worstTurn = std::max<Milliseconds>(worstTurn, threadTime() - start);
            start = threadTime();
        });
        everyTurn.start(0);
        loop.exec();
        if (chat.messages().constLast().text != u"uno"_s)
            state.SkipWithError("the image did not arrive");
    }
    state.counters["call"] = worstCall.count();
    state.counters["longest turn"] = worstTurn.count();
}

BENCHMARK(sendLargestImage)
    ->Name("send-largest-image")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10)
    ->UseRealTime();
BENCHMARK(decodeLines)->Name("line-decoder");
BENCHMARK(decodeLinesFloor);
BENCHMARK(reply)->Name("reply")->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    FigureReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::puts("");
    reporter.printRate("line-decoder", "decodeLinesFloor", 200);
    reporter.printRatio("reply/10000", "reply/1000", 12, Clock::Processor);
    for (const std::string counter : {"call", "longest turn"})
        reporter.printCounter("send-largest-image/iterations:10/real_time", counter, 16);
    return 0;
}
