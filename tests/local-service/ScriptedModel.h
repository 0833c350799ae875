#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QElapsedTimer>
#include <QList>

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>

class QTcpSocket;

/// What a model sends, byte for byte, and how it ends.
struct ModelScript
{
    enum class End {
        Close,
        /// Says nothing more until the client leaves.
        Stay,
    };

    struct Step
    {
        QByteArray bytes;
        std::chrono::milliseconds pauseAfter{};
    };

    QList<Step> steps;
    End end = End::Close;
    /// In bytes, each sent by itself; 0 sends a step at once.
    int pieceSize = 0;

    /// A head with `status` and `headers` (each ended by CR LF), for a body that ends with the
    /// connection unless the headers say otherwise.
    static QByteArray head(int status = 200,
                           const QByteArray &headers = "Content-Type: text/event-stream\r\n");
    /// An event with the next piece of the answer; `text` is JSON without its quotes.
    static QByteArray event(const QByteArray &text);
    /// `bytes` as one chunk of a chunked body.
    static QByteArray chunk(const QByteArray &bytes);
    /// A whole answer: `events` in a body that says where it ends.
    static ModelScript whole(const QByteArray &events);
};

/// A model that plays its script for each request, one at a time, on a free port of the loopback.
class ScriptedModel
{
public:
    explicit ScriptedModel(ModelScript script);
    ~ScriptedModel();
    Q_DISABLE_COPY_MOVE(ScriptedModel)

    quint16 port() const { return m_port; }
    /// The requests so far, head and body as they came.
    QByteArrayList requests() const;
    /// How many clients left before the script was played.
    int leavings() const { return m_leavings; }

private:
    void serve(std::promise<quint16> &port);
    void play(QTcpSocket &socket);
    bool pause(QTcpSocket &socket, std::chrono::milliseconds duration) const;

    const ModelScript m_script;
    mutable std::mutex m_mutex;
    QByteArrayList m_requests;
    std::atomic<int> m_leavings = 0;
    std::atomic<bool> m_ends = false;
    quint16 m_port = 0;
    std::thread m_thread;
};
