#include "HttpsExchange.h"

#include <QSslCertificate>
#include <QSslConfiguration>

using namespace Qt::StringLiterals;

HttpsExchange::HttpsExchange(quint16 port, const QString &certificateFile,
                             const QByteArray &request)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromPath(certificateFile));
    m_socket.setSslConfiguration(configuration);
    QObject::connect(&m_socket, &QSslSocket::readyRead, &m_socket,
                     [this] { m_received += m_socket.readAll(); });
    QObject::connect(&m_socket, &QSslSocket::encrypted, &m_socket,
                     [this, request] { m_socket.write(request); });
    m_socket.connectToHostEncrypted(u"127.0.0.1"_s, port, u"localhost"_s);
}

QByteArray HttpsExchange::post(const QByteArray &body, const QByteArray &headers)
{
    return "POST /api/chat HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n"
        + headers + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray HttpsExchange::head() const
{
    return m_received.first(qMax<qsizetype>(0, m_received.indexOf("\r\n\r\n")));
}

QByteArray HttpsExchange::rawBody() const
{
    const qsizetype headEnd = m_received.indexOf("\r\n\r\n");
    return headEnd < 0 ? QByteArray() : m_received.sliced(headEnd + 4);
}

int HttpsExchange::status() const
{
    return head().split(' ').value(1).toInt();
}

QByteArray HttpsExchange::header(const QByteArray &name) const
{
    for (const QByteArray &line : head().split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.sliced(colon + 1).trimmed();
    }
    return {};
}

QByteArray HttpsExchange::body() const
{
    QByteArray rest = rawBody();
    if (header("Transfer-Encoding") != "chunked")
        return rest;
    QByteArray body;
    for (;;) {
        const qsizetype sizeEnd = rest.indexOf("\r\n");
        const qsizetype size = sizeEnd < 0 ? 0 : rest.first(sizeEnd).toLongLong(nullptr, 16);
        if (size == 0 || rest.size() < sizeEnd + 2 + size)
            return body;
        body += rest.sliced(sizeEnd + 2, size);
        rest = rest.mid(sizeEnd + 2 + size + 2);
    }
}

bool HttpsExchange::isWhole() const
{
    return rawBody().endsWith("\r\n0\r\n\r\n");
}
