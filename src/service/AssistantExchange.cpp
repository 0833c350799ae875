#include "AssistantExchange.h"

#include "ChatRequestBody.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QSslConfiguration>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Bytes the network code may hold for us. Reading stops while it is full, so a reply that comes
/// faster than it can be shown waits in the service and not in this program's memory.
constexpr qint64 readBufferSize = qint64(64) * 1024;

QNetworkRequest networkRequest(const AssistantService &service, qint64 contentLength)
{
    QNetworkRequest request(service.apiURL);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    request.setHeader(QNetworkRequest::ContentLengthHeader, contentLength);
    // Takes the place of the toolkit's own header, which asks for compressed replies and would
    // unpack whatever a small one blows up to.
    request.setRawHeader("Accept-Encoding", "identity");
    // Buffered, the body could be sent again.
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    // A redirect would take the question to a place nobody has chosen.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);

    QSslConfiguration security = QSslConfiguration::defaultConfiguration();
    security.addCaCertificates(QSslCertificate::fromData(service.extraTrustAnchors));
    request.setSslConfiguration(security);
    return request;
}

} // namespace

AssistantExchange::AssistantExchange(QNetworkAccessManager *network, AssistantService service,
                                     QObject *parent)
    : QObject(parent)
    , m_network(network)
    , m_service(std::move(service))
{
    m_idleTimer.setSingleShot(true);
    m_idleTimer.setTimerType(Qt::PreciseTimer);
    m_idleTimer.setInterval(m_service.idleTimeout);
    connect(&m_idleTimer, &QTimer::timeout, this, [this] { fail(TransportError::TimedOut); });
}

void AssistantExchange::start(std::unique_ptr<ChatRequestBody> body)
{
    // On a connection kept from before, the toolkit takes a close for a reason to try again.
    m_network->clearConnectionCache();
    m_reply = m_network->post(networkRequest(m_service, body->contentLength()), body.get());
    body.release()->setParent(m_reply);
    m_reply->setReadBufferSize(readBufferSize);

    const auto restartIdleTimer = [this] { m_idleTimer.start(); };
    connect(m_reply, &QNetworkReply::uploadProgress, this, restartIdleTimer);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &AssistantExchange::readHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &AssistantExchange::readBody);
    connect(m_reply, &QNetworkReply::finished, this, &AssistantExchange::end);
    m_idleTimer.start();
}

void AssistantExchange::readHead()
{
    m_idleTimer.start();
    const int statusCode = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (statusCode < 200 || statusCode > 299)
        fail(StreamingError::serverError(statusCode));
    else if (m_reply->hasRawHeader("Content-Encoding")
             && m_reply->rawHeader("Content-Encoding").compare("identity", Qt::CaseInsensitive)
                 != 0)
        fail(StreamingError::invalidResponse());
}

void AssistantExchange::readBody()
{
    m_idleTimer.start();
    const QByteArray bytes = m_reply->readAll();
    m_receivedSize += bytes.size();
    if (m_receivedSize > maximumReplySize)
        return fail(TransportError::ReplyTooLong);
    const QStringList lines = m_decoder.decode(bytes);
    if (!lines.isEmpty())
        Q_EMIT linesReceived(lines);
}

void AssistantExchange::end()
{
    readBody();
    if (!m_reply)
        return;
    const QNetworkReply::NetworkError error = m_reply->error();
    const bool isHttp = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    if (error == QNetworkReply::ProtocolFailure || (error == QNetworkReply::NoError && !isHttp))
        return fail(StreamingError::invalidResponse());
    if (error != QNetworkReply::NoError)
        return fail(transportErrorFrom(error, currentNetworkPresence()));

    dropReply();
    if (const auto lastLine = m_decoder.finish())
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
    dropReply();
    Q_EMIT failed(description);
}

void AssistantExchange::dropReply()
{
    m_idleTimer.stop();
    m_reply->disconnect(this);
    // Destruction ends what is still under way.
    m_reply->deleteLater();
    m_reply = nullptr;
}
