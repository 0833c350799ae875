#pragma once

#include "AssistantService.h"
#include "LineDecoder.h"
#include "StreamingError.h"
#include "TransportError.h"

#include <QNetworkReply>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>

class ChatRequestBody;
class QNetworkAccessManager;

/// One question sent to the assistant, once, and its reply read line by line. Ends with exactly
/// one of `finished` and `failed`, and never before `start` has returned.
class AssistantExchange : public QObject
{
    Q_OBJECT

public:
    /// Longest reply in bytes. Far beyond what anybody reads (ten million words), and little
    /// enough that a service gone wild cannot take all memory.
    static constexpr qint64 maximumReplySize = qint64(64) * 1024 * 1024;

    /// `network` is borrowed and outlives this object.
    AssistantExchange(QNetworkAccessManager *network, AssistantService service,
                      QObject *parent = nullptr);

    void start(std::unique_ptr<ChatRequestBody> body);

Q_SIGNALS:
    /// The next lines of the reply, without their line ends, empty ones included.
    void linesReceived(const QStringList &lines);
    /// The reply is complete and all its lines have been told.
    void finished();
    /// The exchange failed for the reason told in `description`, in Spanish. Lines received whole
    /// before have been told; a line that was cut off is not told.
    void failed(const QString &description);

private:
    void readHead();
    void readBody();
    void end();
    void fail(StreamingError error);
    void fail(TransportError error);
    void failWith(const QString &description);
    /// Takes leave of the network reply, which tells nothing any more.
    void dropReply();

    QNetworkAccessManager *m_network;
    AssistantService m_service;
    QNetworkReply *m_reply = nullptr;
    QTimer m_idleTimer;
    LineDecoder m_decoder;
    qint64 m_receivedSize = 0;
};
