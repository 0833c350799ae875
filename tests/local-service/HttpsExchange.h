#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QSslSocket>

/// One request written byte by byte and its answer read as it comes, over TLS to localhost.
class HttpsExchange
{
public:
    /// Connects, trusting only the certificate in `certificateFile`, and sends `request` as it is.
    HttpsExchange(quint16 port, const QString &certificateFile, const QByteArray &request);

    /// A whole POST of `body` to /api/chat as JSON, with `headers` (each ended by CR LF) besides.
    static QByteArray post(const QByteArray &body, const QByteArray &headers = {});

    bool isEncrypted() const { return m_socket.isEncrypted(); }
    /// Whether the service has closed the connection.
    bool isClosed() const { return m_socket.state() == QAbstractSocket::UnconnectedState; }
    void abort() { m_socket.abort(); }

    /// 0 until the status line is there.
    int status() const;
    /// Empty when there is none.
    QByteArray header(const QByteArray &name) const;
    /// What arrived of the body so far, without the framing of chunks.
    QByteArray body() const;
    /// Whether a chunked body came with its end.
    bool isWhole() const;

private:
    QByteArray head() const;
    QByteArray rawBody() const;

    QSslSocket m_socket;
    QByteArray m_received;
};
