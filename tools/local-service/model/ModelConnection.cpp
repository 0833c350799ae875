#include "ModelConnection.h"

#include <httplib.h>
#include <optional>

using Clock = std::chrono::steady_clock;

static std::unique_ptr<httplib::ClientImpl> makeClient(const ModelService &service)
{
    const std::string host = service.host.toStdString();
    std::unique_ptr<httplib::ClientImpl> client;
    if (service.usesTls) {
        auto encrypted = std::make_unique<httplib::SSLClient>(host, service.port);
        SSL_CTX_set_min_proto_version(encrypted->ssl_context(), TLS1_2_VERSION);
        encrypted->enable_server_certificate_verification(true);
        client = std::move(encrypted);
    } else {
        client = std::make_unique<httplib::ClientImpl>(host, service.port);
    }
    client->set_connection_timeout(service.connectionLimit);
    client->set_read_timeout(service.silenceLimit);
    client->set_write_timeout(service.silenceLimit);
    client->set_tcp_nodelay(true);
    return client;
}

static std::optional<ModelFailure> failureOfStatus(int status)
{
    switch (status) {
    case 200:
        return std::nullopt;
    case 401:
    case 403:
        return ModelFailure::KeyRefused;
    case 404:
        return ModelFailure::NotFound;
    case 429:
        return ModelFailure::TooManyQuestions;
    case 408:
    case 504:
        return ModelFailure::Silent;
    default:
        return ModelFailure::OtherStatus;
    }
}

ModelConnection::ModelConnection(const ModelService &service)
    : m_service(service)
    , m_client(makeClient(service))
{ }

ModelConnection::~ModelConnection() = default;

void ModelConnection::stop()
{
    m_isStopped = true;
    m_client->stop();
}

std::variant<ModelConnection::BodyEnd, ModelFailure>
ModelConnection::post(const QByteArray &body, const std::function<bool(QByteArrayView)> &receive)
{
    httplib::Request request;
    request.method = "POST";
    request.path = m_service.basePath.toStdString() + "/chat/completions";
    request.body = body.toStdString();
    request.set_header("Content-Type", "application/json");
    request.set_header("Accept", "text/event-stream");
    // What is compressed arrives in blocks, long after it was said.
    request.set_header("Accept-Encoding", "identity");
    if (!m_service.key.isEmpty())
        request.set_header("Authorization", "Bearer " + m_service.key.toStdString());

    std::optional<int> status;
    bool tellsItsEnd = false;
    auto lastHeard = Clock::now();
    request.response_handler = [&](const httplib::Response &response) {
        lastHeard = Clock::now();
        status = response.status;
        tellsItsEnd
            = response.has_header("Transfer-Encoding") || response.has_header("Content-Length");
        return response.status == 200 && !m_isStopped;
    };
    bool isEnough = false;
    request.content_receiver = [&](const char *data, size_t size, uint64_t, uint64_t) {
        lastHeard = Clock::now();
        isEnough = m_isStopped || !receive({data, static_cast<qsizetype>(size)});
        return !isEnough;
    };

    httplib::Response response;
    auto error = httplib::Error::Success;
    const bool isWhole = m_client->send(request, response, error);
    if (m_isStopped || isEnough)
        return BodyEnd::Abandoned;
    if (status) {
        if (const auto failure = failureOfStatus(*status))
            return *failure;
    }
    if (isWhole)
        return tellsItsEnd ? BodyEnd::Told : BodyEnd::Closed;

    switch (error) {
    case httplib::Error::Connection:
    case httplib::Error::SSLConnection:
        return ModelFailure::Unreachable;
    case httplib::Error::SSLLoadingCerts:
    case httplib::Error::SSLServerVerification:
        return ModelFailure::Untrusted;
    case httplib::Error::ConnectionTimeout:
        return ModelFailure::Silent;
    default:
        // The library has one error for a connection that is closed and one that stays silent.
        return Clock::now() - lastHeard >= m_service.silenceLimit ? ModelFailure::Silent
                                                                  : ModelFailure::BrokenOff;
    }
}
