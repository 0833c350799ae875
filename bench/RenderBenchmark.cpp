#include "ChatPaneScene.h"

#include <QGuiApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;

// Opening conversations and streaming into them, in a real window on the software renderer, from
// the change of the model to the frame that shows it.
//
// The text is made up from syllables with a vocabulary of 4,000 words of which, as in a language,
// few are frequent; about 90 characters a row, one row in eight in another form than a paragraph.
namespace {
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

double processorMilliseconds()
{
    return 1000.0 * double(std::clock()) / CLOCKS_PER_SEC;
}

void printFigure(const std::string &name, double value, double budget, const char *unit)
{
    std::printf("figure: %s = %.2f %s (budget <= %.2f %s) %s\n", name.c_str(), value, unit, budget,
                unit, value <= budget ? "ok" : "MISSED");
    std::fflush(stdout);
}

/// How long something took on the clock, and how much of it the processor worked for us: the
/// difference is what other programs took.
struct Duration
{
    double elapsed = 0;
    double worked = 0;
};

class Stopwatch
{
public:
    Duration read() const
    {
        return {milliseconds(Clock::now() - m_start), processorMilliseconds() - m_processorStart};
    }

private:
    Clock::time_point m_start = Clock::now();
    double m_processorStart = processorMilliseconds();
};

void printFigure(const std::string &name, Duration time, double budget)
{
    printFigure(name + " (processor " + std::to_string(time.worked).substr(0, 6) + " ms)",
                time.elapsed, budget, "ms");
}

class TextSource
{
public:
    TextSource()
    {
        const QStringList syllables
            = u"ca te mi ro lu pa de si no gu en al es cor dia neu to ra le fi bro sis ón ía pul mo"_s
                  .split(u' ');
        while (m_words.size() < vocabulary) {
            QString word;
            for (int left = 1 + m_random.bounded(4); left > 0; --left)
                word += syllables.at(m_random.bounded(int(syllables.size())));
            m_words.append(word);
        }
    }

    QString row()
    {
        QStringList words;
        for (int left = 8 + m_random.bounded(12); left > 0; --left)
            words.append(word());
        QString text = words.join(u' ');
        switch (m_random.bounded(8)) {
        case 0:
            return u"## "_s + words.first(3).join(u' ');
        case 1:
            return {};
        case 2:
        case 3:
            return u"- **"_s + words.first() + u":** "_s + text;
        case 4:
            return u"1. "_s + text;
        default:
            return text;
        }
    }

    QString rows(int count)
    {
        QStringList rows;
        while (rows.size() < count)
            rows.append(row());
        return rows.join(u'\n');
    }

    /// Replies of 15 rows and short questions by turns, `count` messages in all.
    QList<ChatMessage> conversation(int count)
    {
        QList<ChatMessage> messages;
        while (messages.size() < count)
            messages.append(reply(rows(15)));
        return messages;
    }

private:
    static constexpr int vocabulary = 4000;

    QString word()
    {
        // Frequency falls with the rank.
        const double rank = std::pow(double(vocabulary), m_random.generateDouble());
        return m_words.at(std::min(int(rank), vocabulary - 1));
    }

    QRandomGenerator m_random{7};
    QStringList m_words;
};

void waitForFrame(ChatPaneScene &scene)
{
    bool isShown = false;
    QObject context;
    QObject::connect(&scene.view(), &QQuickWindow::frameSwapped, &context,
                     [&isShown] { isShown = true; });
    scene.view().update();
    while (!isShown)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void settle(ChatPaneScene &scene)
{
    const auto end = Clock::now() + std::chrono::milliseconds(300);
    while (Clock::now() < end)
        QCoreApplication::processEvents();
    waitForFrame(scene);
}

Duration timeToOpen(ChatPaneScene &scene, const QList<ChatMessage> &messages)
{
    scene.show({});
    settle(scene);
    const Stopwatch stopwatch;
    scene.show(messages);
    waitForFrame(scene);
    const Duration time = stopwatch.read();
    settle(scene);
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
    waitForFrame(scene);
    QList<Duration> frames;
    const Stopwatch total;
    for (int line = 0; line < lines; ++line) {
        scene.appendText(source.row() + u'\n');
        const Stopwatch stopwatch;
        waitForFrame(scene);
        frames.append(stopwatch.read());
    }
    const double processorTime = total.read().worked;
    scene.setLoading(false);
    settle(scene);
    std::ranges::sort(frames, {}, &Duration::elapsed);
    return {frames.at(lines / 2), frames.at(lines * 95 / 100), processorTime};
}

Duration timeToStreamAtOnce(ChatPaneScene &scene, TextSource &source, int lines)
{
    scene.append(reply(u""_s));
    scene.setLoading(true);
    settle(scene);
    QStringList rows;
    while (rows.size() < lines)
        rows.append(source.row() + u'\n');
    const Stopwatch stopwatch;
    for (const QString &row : rows)
        scene.appendText(row);
    waitForFrame(scene);
    const Duration time = stopwatch.read();
    scene.setLoading(false);
    settle(scene);
    return time;
}
} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    TextSource source;
    ChatPaneScene scene;
    settle(scene);

    // Each size first meets its words, as a person does, and then is opened once more.
    constexpr std::array openings{std::pair{20, 20.0}, std::pair{200, 90.0},
                                  std::pair{2000, 900.0}};
    for (const auto &[count, budget] : openings) {
        const auto messages = source.conversation(count);
        const std::string name = "opening " + std::to_string(count) + " messages of 15 rows";
        printFigure(name, timeToOpen(scene, messages), budget);
        printFigure(name + ", again", timeToOpen(scene, messages), budget);
    }

    for (const int before : {2, 2000}) {
        scene.show(source.conversation(before));
        settle(scene);
        const Streaming streaming = stream(scene, source, 2000);
        const std::string name
            = "streaming 2,000 lines after " + std::to_string(before) + " messages, frame ";
        printFigure(name + "median", streaming.median, 8);
        printFigure(name + "p95", streaming.percentile95, 8);
    }

    scene.show(source.conversation(2));
    const double thousand = stream(scene, source, 1000).processorTime;
    scene.show(source.conversation(2));
    const double tenThousand = stream(scene, source, 10'000).processorTime;
    printFigure("streaming 10,000 lines, processor time / that of 1,000", tenThousand / thousand,
                12, "x");

    scene.show(source.conversation(2));
    printFigure("2,000 lines at once", timeToStreamAtOnce(scene, source, 2000), 150);
    scene.show(source.conversation(2));
    printFigure("10,000 lines at once", timeToStreamAtOnce(scene, source, 10'000), 1000);
    return 0;
}
