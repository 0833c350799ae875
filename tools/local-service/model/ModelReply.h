#pragma once

#include "ModelConnection.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// An answer that a model is writing, read by a thread of its own and given line by line. Ends the
/// model's work when it is destroyed.
class ModelReply
{
public:
    /// In characters: the longest answer that is read. What comes after is left out, and said.
    static constexpr qsizetype longestAnswer = 100'000;

    enum class State {
        /// There is nothing new.
        Waiting,
        /// There is a line to take.
        Line,
        /// Every line was taken, and that was all.
        Whole,
        /// Every line was taken; the rest is lost.
        Failed,
    };

    /// What the model said, once it said all of it.
    struct Outcome
    {
        /// The lines that were given, joined by line feeds.
        QString text;
        /// The topics that the model marked as those of a practice question gone wrong.
        QStringList toReview;
    };
    using WhenWhole = std::function<void(const Outcome &)>;

    /// Asks at once. `firstLines` are there to take before the model says anything; they are no
    /// part of what it said. `whenWhole` is called once, by the thread that calls `wait`, before
    /// that returns Whole; not at all when the answer fails or this object goes earlier.
    ModelReply(const ModelService &service, const QByteArray &body, const QStringList &firstLines,
               WhenWhole whenWhole);
    ~ModelReply();
    Q_DISABLE_COPY_MOVE(ModelReply)

    /// Waits for something new, until `time` at the latest. Takes nothing.
    State wait(std::chrono::steady_clock::time_point time);

    /// The next line, without its line end. Only when `wait` returned Line.
    QString takeLine();

    /// Why the answer failed. Only when `wait` returned Failed.
    ModelFailure failure() const { return m_failure; }

private:
    void read(const QByteArray &body);
    void give(const QStringList &lines);

    ModelConnection m_connection;
    WhenWhole m_whenWhole;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<QString> m_lines;
    // What the reading thread leaves to be read once it has set `m_hasEnded`.
    bool m_hasEnded = false;
    bool m_isWhole = false;
    ModelFailure m_failure = ModelFailure::Empty;
    Outcome m_outcome;

    std::thread m_reading;
};
