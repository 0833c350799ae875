#include "ChatPaneScene.h"
#include "Frames.h"
#include "Stopwatch.h"
#include "TextSource.h"

#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

using namespace Qt::StringLiterals;

// Opening conversations and streaming into them, in a real window on the software renderer, from
// the change of the model to the frame that shows it.
namespace {
void printFigure(const std::string &name, double value, double budget, const char *unit)
{
    std::printf("figure: %s = %.2f %s (budget <= %.2f %s) %s\n", name.c_str(), value, unit, budget,
                unit, value <= budget ? "ok" : "MISSED");
    std::fflush(stdout);
}

void printFigure(const std::string &name, Duration time, double budget)
{
    printFigure(name + " (processor " + std::to_string(time.worked).substr(0, 6) + " ms)",
                time.elapsed, budget, "ms");
}

/// Replies of 15 rows, `count` in all.
QList<ChatMessage> conversation(TextSource &source, int count)
{
    QList<ChatMessage> messages;
    while (messages.size() < count)
        messages.append(reply(source.rows(15).join(u'\n')));
    return messages;
}

Duration timeToOpen(ChatPaneScene &scene, const QList<ChatMessage> &messages)
{
    scene.show({});
    settle(scene.view());
    const Stopwatch stopwatch;
    scene.show(messages);
    waitForFrame(scene.view());
    const Duration time = stopwatch.read();
    settle(scene.view());
    return time;
}

// One frame for each line, as at a steady rate below the screen's.
struct Streaming
{
    Duration median;
    Duration percentile95;
    double processorTime = 0;
};
Streaming stream(ChatPaneScene &scene, TextSource &source, int lines)
{
    scene.append(reply(u""_s));
    scene.setLoading(true);
    waitForFrame(scene.view());
    QList<Duration> frames;
    const Stopwatch total;
    for (int line = 0; line < lines; ++line) {
        scene.appendText(source.row() + u'\n');
        const Stopwatch stopwatch;
        waitForFrame(scene.view());
        frames.append(stopwatch.read());
    }
    const double processorTime = total.read().worked;
    scene.setLoading(false);
    settle(scene.view());
    std::ranges::sort(frames, {}, &Duration::elapsed);
    return {frames.at(lines / 2), frames.at(lines * 95 / 100), processorTime};
}

Duration timeToStreamAtOnce(ChatPaneScene &scene, TextSource &source, int lines)
{
    scene.append(reply(u""_s));
    scene.setLoading(true);
    settle(scene.view());
    QStringList rows;
    while (rows.size() < lines)
        rows.append(source.row() + u'\n');
    const Stopwatch stopwatch;
    for (const QString &row : rows)
        scene.appendText(row);
    waitForFrame(scene.view());
    const Duration time = stopwatch.read();
    scene.setLoading(false);
    settle(scene.view());
    return time;
}
} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    TextSource source;
    ChatPaneScene scene;
    settle(scene.view());

    // Each size first meets its words, as a person does, and then is opened once more.
    constexpr std::array openings{std::pair{20, 20.0}, std::pair{200, 90.0},
                                  std::pair{2000, 900.0}};
    for (const auto &[count, budget] : openings) {
        const auto messages = conversation(source, count);
        const std::string name = "opening " + std::to_string(count) + " messages of 15 rows";
        printFigure(name, timeToOpen(scene, messages), budget);
        printFigure(name + ", again", timeToOpen(scene, messages), budget);
    }

    for (const int before : {2, 2000}) {
        scene.show(conversation(source, before));
        settle(scene.view());
        const Streaming streaming = stream(scene, source, 2000);
        const std::string name
            = "streaming 2,000 lines after " + std::to_string(before) + " messages, frame ";
        printFigure(name + "median", streaming.median, 8);
        printFigure(name + "p95", streaming.percentile95, 8);
    }

    scene.show(conversation(source, 2));
    const double thousand = stream(scene, source, 1000).processorTime;
    scene.show(conversation(source, 2));
    const double tenThousand = stream(scene, source, 10'000).processorTime;
    printFigure("streaming 10,000 lines, processor time / that of 1,000", tenThousand / thousand,
                12, "x");

    scene.show(conversation(source, 2));
    printFigure("2,000 lines at once", timeToStreamAtOnce(scene, source, 2000), 150);
    scene.show(conversation(source, 2));
    printFigure("10,000 lines at once", timeToStreamAtOnce(scene, source, 10'000), 1000);
    return 0;
}
