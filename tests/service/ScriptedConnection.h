#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <functional>
#include <memory>

struct ssl_st;
struct ssl_ctx_st;

/// A client's request as far as it was received: the head, with the empty line that ends it, and
/// the body.
struct RecordedRequest
{
    QByteArray head;
    QByteArray body;
};

/// One accepted connection of a ScriptedServer: what its script does the steps with. Every step
/// blocks; once the client is gone or the server stops, steps do nothing.
class ScriptedConnection
{
public:
    using Recorder = std::function<void(const RecordedRequest &)>;

    /// `socket` stays the caller's; `context` outlives the connection. `record` is told each
    /// request as soon as it has been read.
    ScriptedConnection(int socket, ssl_ctx_st *context, Recorder record);
    ~ScriptedConnection();

    ScriptedConnection(const ScriptedConnection &) = delete;
    ScriptedConnection &operator=(const ScriptedConnection &) = delete;

    /// Until then everything is sent and received as plain bytes; false when the client refuses.
    bool startTls();

    /// Does as a proxy that is asked for a tunnel: reads and records that, and agrees. What comes
    /// next is for the service behind it.
    void openTunnel();

    /// Waits until the client has sent something, and leaves it unread.
    void waitForBytes();

    /// Reads and records one request, with a pause after every MiB of its body.
    void readRequest(std::chrono::milliseconds pause = {});
    /// Reads and records a request's head, and leaves most of a large body unread.
    void readHead();

    /// False when the client takes no more.
    bool send(QByteArrayView bytes);
    void sendByteByByte(QByteArrayView bytes);
    /// Sends `bytes` as they are on a connection that speaks TLS.
    void sendPastTls(QByteArrayView bytes);
    /// The orderly end: TLS's close_notify, then the socket is closed.
    void close();
    /// Closes the socket without TLS's close_notify.
    void cut();
    /// Resets the connection.
    void reset();
    /// Sends nothing more until the client has closed the connection.
    void waitUntilClientLeaves();
    /// As above, and reads nothing either.
    void waitWithoutReading();

private:
    qsizetype receiveHead();
    qsizetype receive();
    void recordRequest(qsizetype headSize);

    int m_socket;
    ssl_ctx_st *m_context;
    Recorder m_record;
    std::shared_ptr<ssl_st> m_tls;
    QByteArray m_received;
};
