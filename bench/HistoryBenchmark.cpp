#include "Base64.h"
#include "ConversationCoding.h"
#include "FigureReporter.h"
#include "HistoryStore.h"
#include "PreferenceStore.h"
#include "SqlitePreferenceBackend.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QUtf8StringView>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <map>
#include <string>

#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace {

QString realText(qsizetype length)
{
    const QString paragraph
        = u"## Insuficiencia cardíaca\n- **Fisiopatología:** caída del volumen sistólico, "
          "activación del sistema renina‑angiotensina y \"remodelado\".\n1. Preguntá por disnea, "
          "ortopnea y edemas; auscultá el tercer ruido.\n"_s;
    return paragraph.repeated(length / paragraph.size() + 1).left(length);
}

/// A history of about `bytes` as it is stored: conversations of four questions, each with a
/// preview of 50 to 100 KB in base64 and a reply of 3,000 characters.
QList<Conversation> makeHistory(qsizetype bytes)
{
    QRandomGenerator random(1);
    QList<Conversation> conversations;
    for (qsizetype size = 0; size < bytes;) {
        Conversation conversation{QUuid::createUuid(), u"Insuficiencia cardíaca"_s, {}};
        for (int i = 0; i < 4 && size < bytes; ++i) {
            QByteArray preview(random.bounded(37'500, 75'000), Qt::Uninitialized);
            std::generate(preview.begin(), preview.end(), [&] { return char(random.generate()); });
            size += preview.size() / 3 * 4 + 4'000;
            conversation.messages.append(
                {QUuid::createUuid(), realText(200), true, u"placa.jpg"_s, preview});
            conversation.messages.append(
                {QUuid::createUuid(), realText(3'000), false, std::nullopt, std::nullopt});
        }
        conversations.append(conversation);
    }
    return conversations;
}

/// One history in every form that the measurements need, made once per size.
struct Subject
{
    explicit Subject(qsizetype bytes)
        : conversations(makeHistory(bytes))
        , document(encodeConversations(conversations))
    {
        for (const Conversation &conversation : conversations) {
            for (const ChatMessage &message : conversation.messages) {
                if (message.imagePreviewData)
                    previews.append(message.imagePreviewData->toBase64());
            }
        }
        const auto store = openStore();
        HistoryStore(store.get()).save(conversations);
    }

    QString path() const { return folder.filePath(u"preferences.sqlite"_s); }
    std::unique_ptr<PreferenceStore> openStore() const
    {
        return std::make_unique<PreferenceStore>(std::make_unique<SqlitePreferenceBackend>(path()));
    }

    QTemporaryDir folder;
    QList<Conversation> conversations;
    QByteArray document;
    QList<QByteArray> previews;
};

const Subject &subject(const benchmark::State &state)
{
    static std::map<int64_t, std::unique_ptr<Subject>> subjects;
    auto &found = subjects[state.range(0)];
    if (!found)
        found = std::make_unique<Subject>(state.range(0) * 1'000'000);
    return *found;
}

/// All of them at once, as a loaded history holds them; with our own decoder, which is many
/// times as fast as QByteArray's.
void decodePreviews(const Subject &subject)
{
    QList<std::optional<QByteArray>> previews;
    for (const QByteArray &preview : subject.previews)
        previews.append(decodeBase64(preview));
    benchmark::DoNotOptimize(previews);
}

void encode(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeConversations(history.conversations));
}

/// What no writer can skip: the previews in base64 and the texts in UTF-8.
void encodeFloor(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        for (const Conversation &conversation : history.conversations) {
            for (const ChatMessage &message : conversation.messages) {
                benchmark::DoNotOptimize(message.text.toUtf8());
                if (message.imagePreviewData)
                    benchmark::DoNotOptimize(message.imagePreviewData->toBase64());
            }
        }
    }
}

void decode(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeConversations(history.document));
}

/// What no reader can skip: the UTF-8 check and the previews' base64.
void decodeFloor(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(QUtf8StringView(history.document).isValidUtf8());
        decodePreviews(history);
    }
}

/// From nothing open to the document's bytes.
void read(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        auto backend = std::make_unique<SqlitePreferenceBackend>(history.path());
        const auto result = backend->data(HistoryStore::historyKey);
        const auto *document = std::get_if<std::optional<QByteArray>>(&result);
        if (!document || !*document || (*document)->size() != history.document.size())
            state.SkipWithError("the document was not read");
        // Closing the database is not part of reading.
        state.PauseTiming();
        backend.reset();
        state.ResumeTiming();
    }
}

/// From nothing open to the list of conversations.
void load(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        {
            const auto store = history.openStore();
            const HistoryStore historyStore(store.get());
            const auto conversations = historyStore.load();
            if (conversations.size() != history.conversations.size())
                state.SkipWithError("the history was not read back");
            // Closing the store is not part of loading.
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}

/// The file read whole, as if it held nothing but the document.
void readFloor(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        QFile file(history.path());
        if (!file.open(QFile::ReadOnly))
            state.SkipWithError("the database cannot be read");
        benchmark::DoNotOptimize(file.readAll());
    }
}

/// The same work, with the file read whole in place of the database.
void loadFloor(benchmark::State &state)
{
    const Subject &history = subject(state);
    for (auto _ : state) {
        QFile file(history.path());
        if (!file.open(QFile::ReadOnly))
            state.SkipWithError("the database cannot be read");
        benchmark::DoNotOptimize(file.readAll());
        benchmark::DoNotOptimize(QUtf8StringView(history.document).isValidUtf8());
        decodePreviews(history);
    }
}

/// What the calling thread pays when one conversation grew since the last save.
void save(benchmark::State &state)
{
    const Subject &history = subject(state);
    const auto store = history.openStore();
    HistoryStore historyStore(store.get());
    QList<Conversation> conversations = history.conversations;
    historyStore.save(conversations);
    qint64 worst = 0;
    for (auto _ : state) {
        QElapsedTimer timer;
        timer.start();
        conversations.first().messages.last().text.append(u"Una línea más.\n"_s);
        historyStore.save(conversations);
        worst = std::max(worst, timer.nsecsElapsed());
    }
    state.counters["worst"] = double(worst) / 1'000'000;
    // What the last iterations left to write is not measured.
    store->flush();
}

BENCHMARK(encode)->Name("history-encode")->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeFloor)->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(decode)->Name("history-decode")->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeFloor)->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(read)
    ->Name("history-read")
    ->Arg(6)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(readFloor)->Arg(6)->Arg(60)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(load)
    ->Name("history-load")
    ->Arg(6)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(loadFloor)
    ->Arg(6)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(save)
    ->Name("history-save")
    ->Arg(6)
    ->Arg(60)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(200);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
#ifdef M_MMAP_THRESHOLD
    // A history is loaded once, into fresh memory: no iteration may reuse what one before it had.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
#endif
    benchmark::Initialize(&argc, argv);
    FigureReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::puts("");
    for (const std::string size : {"6", "60"}) {
        reporter.printRatio("history-encode/" + size, "encodeFloor/" + size, 2);
        reporter.printRatio("history-decode/" + size, "decodeFloor/" + size, 2);
        reporter.printRatio("history-read/" + size + "/real_time",
                            "readFloor/" + size + "/real_time", 1.4);
        reporter.printRatio("history-load/" + size + "/process_time/real_time",
                            "loadFloor/" + size + "/process_time/real_time", 2);
        reporter.printCounter("history-save/" + size + "/iterations:200", "worst", 16);
    }
    return 0;
}
