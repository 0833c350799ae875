#include "AssistantExchange.h"

#include <QNetworkProxy>

#include <utility>

namespace {

constexpr quint16 httpsPort = 443;

/// Bytes of the reply taken in at a time, which bounds both the work of one turn of the event loop
/// and what a service that talks faster than we read can make us hold.
constexpr qint64 readBufferSize = qint64(16) * 1024;

/// Bytes of the question that may wait for the network.
constexpr qint64 writeBufferSize = qint64(256) * 1024;

} // namespace

AssistantExchange::AssistantExchange(AssistantService service, ChatRequestBody body,
                                     QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_body(std::move(body))
{
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setTimerType(Qt::PreciseTimer);
    m_idleTimer.setInterval(m_service.idleTimeout);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] { fail(TransportError::TimedOut); });

    connect(&m_socket, &QSslSocket::encrypted, this, &AssistantExchange::sendHead);
    connect(&m_socket, &QSslSocket::readyRead, this, &AssistantExchange::readResponse);
    connect(&m_socket, &QSslSocket::errorOccurred, this, &AssistantExchange::endConnection);
}

void AssistantExchange::start(const QSslConfiguration &tlsConfiguration)
{
    m_socket.setSslConfiguration(tlsConfiguration);
    m_socket.setReadBufferSize(readBufferSize);
    // Nothing but the service itself is to hear the question.
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_idleTimer.start();
    m_socket.connectToHostEncrypted(m_service.apiURL.host(QUrl::FullyEncoded),
                                    quint16(m_service.apiURL.port(httpsPort)));
}

void AssistantExchange::sendHead()
{
    const QByteArray path = m_service.apiURL.path(QUrl::FullyEncoded).toLatin1();
    const QByteArray host = m_service.apiURL.authority(QUrl::FullyEncoded).toLatin1();
    m_socket.write("POST " + path + " HTTP/1.1\r\nHost: " + host
                   + "\r\nContent-Type: application/json\r\nContent-Length: "
                   + QByteArray::number(m_body.contentLength()) + "\r\nConnection: close\r\n\r\n");
    // Not before: the bytes of the handshake are told as written too.
    connect(&m_socket, &QSslSocket::encryptedBytesWritten, this, &AssistantExchange::sendBody);
    sendBody();
}

void AssistantExchange::sendBody()
{
    m_idleTimer.start();
    while (m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() < writeBufferSize) {
        const QByteArray block = m_body.takeNextBlock();
        if (block.isEmpty())
            return;
        m_socket.write(block);
    }
}

void AssistantExchange::readResponse()
{
    m_idleTimer.start();
    const QByteArray body = m_response.read(m_socket.readAll());
    const HttpResponseReader::State state = m_response.state();
    if (state == HttpResponseReader::State::Head)
        return;
    if (state != HttpResponseReader::State::Invalid
        && (m_response.statusCode() < 200 || m_response.statusCode() > 299)) {
        fail(StreamingError::serverError(m_response.statusCode()));
        return;
    }
    const QStringList lines = m_lines.decode(body);
    if (!lines.isEmpty())
        Q_EMIT linesReceived(lines);
    if (state == HttpResponseReader::State::Invalid)
        fail(StreamingError::invalidResponse());
    else if (state == HttpResponseReader::State::Complete)
        finish();
}

void AssistantExchange::endConnection(QAbstractSocket::SocketError error)
{
    // What came before the end counts, and may be a whole reply.
    while (!m_hasEnded && m_socket.bytesAvailable() > 0)
        readResponse();
    if (m_hasEnded)
        return;
    if (error == QAbstractSocket::RemoteHostClosedError)
        m_response.endOfConnection();
    if (m_response.state() == HttpResponseReader::State::Complete)
        finish();
    else
        fail(transportErrorFrom(error, currentNetworkPresence()));
}

void AssistantExchange::finish()
{
    leave();
    if (const auto lastLine = m_lines.finish())
        Q_EMIT linesReceived({*lastLine});
    Q_EMIT finished();
}

void AssistantExchange::fail(StreamingError error)
{
    failWith(error.description());
}

void AssistantExchange::fail(TransportError error)
{
    failWith(transportErrorDescription(error));
}

void AssistantExchange::failWith(const QString &description)
{
    leave();
    Q_EMIT failed(description);
}

void AssistantExchange::leave()
{
    m_hasEnded = true;
    m_idleTimer.stop();
    m_socket.disconnect(this);
    m_socket.abort();
}
