#pragma once

#include "AssistantService.h"
#include "ChatRequestBody.h"
#include "HttpResponseReader.h"
#include "LineDecoder.h"
#include "StreamingError.h"
#include "TransportError.h"

#include <QObject>
#include <QSslSocket>
#include <QStringList>
#include <QTimer>

/// One question sent to the assistant and its reply, however long, read line by line. Ends with
/// exactly one of `finished` and `failed`.
///
/// It speaks HTTP/1.1 on a TLS connection of its own, rather than through the toolkit's HTTP
/// client, because a question must reach the service exactly once whatever happens to the
/// connection. That client sends a request again when a connection breaks early; made to send it
/// once, it asks for a body in pieces of 16 KiB across threads, which on a busy machine takes
/// seconds for one image; it tells no garbage from a broken connection, takes heads without end,
/// and adds headers of its own.
class AssistantExchange : public QObject
{
    Q_OBJECT

public:
    AssistantExchange(AssistantService service, ChatRequestBody body, QObject *parent = nullptr);

    /// Begins to connect. `tlsConfiguration` is what the service is trusted by.
    void start(const QSslConfiguration &tlsConfiguration);

Q_SIGNALS:
    /// The next lines of the reply, without their line ends, empty ones included.
    void linesReceived(const QStringList &lines);
    /// The reply is complete and all its lines have been told.
    void finished();
    /// The exchange failed for the reason told in `description`, in Spanish. Lines received whole
    /// before have been told; a line that was cut off is not told.
    void failed(const QString &description);

private:
    void sendHead();
    void sendBody();
    void readResponse();
    void endConnection(QAbstractSocket::SocketError error);
    void finish();
    void fail(StreamingError error);
    void fail(TransportError error);
    void failWith(const QString &description);
    /// Takes leave of the service, after which nothing more is told.
    void leave();

    AssistantService m_service;
    ChatRequestBody m_body;
    QSslSocket m_socket;
    QTimer m_idleTimer;
    HttpResponseReader m_response;
    LineDecoder m_lines;
    bool m_hasEnded = false;
};
