#include "ContentView.h"
#include "FigureReporter.h"
#include "ImageIntake.h"
#include "ImageLimits.h"
#include "ImagePreview.h"
#include "ResourceUse.h"
#include "ScriptedServer.h"
#include "TestChat.h"

#include <QBuffer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>

using namespace Qt::StringLiterals;

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

QByteArray jpeg(const QImage &image, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    writer.write(image);
    return buffer.data();
}

/// 48 megapixels in at most 12 MB, as grainy as that allows.
const QByteArray &photograph()
{
    static const QByteArray bytes = [] {
        QImage image(8'000, 6'000, QImage::Format_RGB32);
        QRandomGenerator random(1);
        for (int y = 0; y < image.height(); ++y) {
            auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const int grain = random.bounded(40);
                row[x] = qRgb((x / 40 + grain) % 256, (y / 30 + grain) % 256, (x + y) / 60 % 256);
            }
        }
        constexpr int best = 85;
        constexpr int step = 5;
        QByteArray encoded;
        for (int quality = best; encoded.isEmpty() || encoded.size() > maximumImageBytes;
             quality -= step)
            encoded = jpeg(image, quality);
        return encoded;
    }();
    return bytes;
}

void preview(benchmark::State &state)
{
    const QByteArray &bytes = photograph();
    resetMemoryPeak();
    for (auto _ : state)
        benchmark::DoNotOptimize(makePreviewData(bytes));
    state.counters["memory MB"] = double(memoryGrowth());
}

/// What no preview can do without: the decoder's own decoding at the preview's size.
void previewFloor(benchmark::State &state)
{
    QByteArray bytes = photograph();
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer, "jpeg");
        reader.setScaledSize({700, 525});
        benchmark::DoNotOptimize(reader.read());
    }
}

/// Turns the event loop until `isDone`, and returns the longest that one turn computed.
template <typename Condition>
Milliseconds longestTurnUntil(Condition isDone)
{
    QEventLoop loop;
    QTimer everyTurn;
    Milliseconds longest{};
    auto begin = threadTime();
    QObject::connect(&everyTurn, &QTimer::timeout, &loop, [&] {
        longest = std::max<Milliseconds>(longest, threadTime() - begin);
        begin = threadTime();
        if (isDone())
            loop.quit();
    });
    everyTurn.start(1);
    loop.exec();
    return longest;
}

/// The photograph chosen in the file chooser, and the question sent with it: how long the main
/// thread computes without a break, and the memory of it all.
void chooseAndSend(benchmark::State &state)
{
    const TestAuthority authority;
    ScriptedServer server(authority.issue("localhost"), [](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nuno\n");
        connection.close();
    });
    QTemporaryFile file(u"XXXXXX.jpg"_s);
    if (!file.open() || file.write(photograph()) != photograph().size() || !file.flush())
        state.SkipWithError("cannot write the photograph");

    Milliseconds worstCall{};
    Milliseconds worstTurn{};
    Milliseconds worstWait{};
    qint64 growth = 0;
    for (auto _ : state) {
        resetMemoryPeak();
        TestChat chat({.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(server.port())),
                       .extraTrustAnchors = authority.certificate()});
        ImageIntake intake(&chat.view);
        SendFlow sendFlow(&chat.view, &chat.identity,
                          [&intake](const QByteArray &bytes) { return intake.preview(bytes); },
                          {.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(server.port())),
                           .extraTrustAnchors = authority.certificate()});

        const auto chosen = std::chrono::steady_clock::now();
        intake.handleImportedFile({QUrl::fromLocalFile(file.fileName())});
        worstTurn
            = std::max(worstTurn, longestTurnUntil([&] { return chat.view.hasSelectedImage(); }));
        worstWait = std::max<Milliseconds>(worstWait, std::chrono::steady_clock::now() - chosen);

        const auto begin = threadTime();
        chat.view.setMessageText(u"¿Qué se ve?"_s);
        sendFlow.sendMessage();
        worstCall = std::max<Milliseconds>(worstCall, threadTime() - begin);
        worstTurn = std::max(worstTurn, longestTurnUntil([&] { return !chat.view.isLoading(); }));
        if (chat.messages().constLast().text != u"uno"_s
            || !chat.messages().constFirst().imagePreviewData)
            state.SkipWithError("the photograph did not arrive");
        growth = std::max(growth, memoryGrowth());
    }
    state.counters["longest turn"] = worstTurn.count();
    state.counters["call of send"] = worstCall.count();
    state.counters["until pending"] = worstWait.count();
    state.counters["memory MB"] = double(growth);
}

BENCHMARK(preview)->Name("preview-48-megapixels")->Unit(benchmark::kMillisecond);
BENCHMARK(previewFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(chooseAndSend)
    ->Name("choose-and-send-48-megapixels")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    FigureReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::puts("");
    reporter.printRatio("preview-48-megapixels", "previewFloor", 1.3, Clock::Processor);
    constexpr double frameBudget = 50;
    const std::string choosing = "choose-and-send-48-megapixels/iterations:5/real_time";
    reporter.printCounter(choosing, "longest turn", frameBudget);
    reporter.printCounter(choosing, "call of send", frameBudget);
    return 0;
}
