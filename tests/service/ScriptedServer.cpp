#include "ScriptedServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

sockaddr_in loopbackAddress()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// A socket bound to a free port of the loopback interface.
int boundSocket()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopbackAddress();
    bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    return socket;
}

quint16 portOf(int socket)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

std::shared_ptr<SSL_CTX> contextFor(const ServerCredentials &credentials)
{
    const std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    const std::shared_ptr<BIO> certificateText(
        BIO_new_mem_buf(credentials.certificate.constData(), -1), BIO_free);
    const std::shared_ptr<X509> certificate(
        PEM_read_bio_X509(certificateText.get(), nullptr, nullptr, nullptr), X509_free);
    SSL_CTX_use_certificate(context.get(), certificate.get());
    const std::shared_ptr<BIO> keyText(BIO_new_mem_buf(credentials.key.constData(), -1), BIO_free);
    const std::shared_ptr<EVP_PKEY> key(
        PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    SSL_CTX_use_PrivateKey(context.get(), key.get());
    return context;
}

} // namespace

ScriptedServer::ScriptedServer(const ServerCredentials &credentials, Script script)
    : m_script(std::move(script))
    , m_context(contextFor(credentials))
    , m_listener(boundSocket())
    , m_port(portOf(m_listener))
{
    // OpenSSL writes to sockets whose client has gone.
    std::signal(SIGPIPE, SIG_IGN);
    listen(m_listener, SOMAXCONN);
    m_acceptor = std::thread(&ScriptedServer::acceptConnections, this);
}

ScriptedServer::~ScriptedServer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        for (const int socket : m_openSockets)
            shutdown(socket, SHUT_RDWR);
    }
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (std::thread &connection : m_connections)
        connection.join();
    ::close(m_listener);
}

int ScriptedServer::connectionCount() const
{
    const std::lock_guard lock(m_mutex);
    return int(m_connections.size());
}

QList<RecordedRequest> ScriptedServer::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

bool ScriptedServer::waitForRequests(int count, std::chrono::milliseconds patience) const
{
    std::unique_lock lock(m_mutex);
    return m_requestRecorded.wait_for(lock, patience,
                                      [this, count] { return m_requests.size() >= count; });
}

void ScriptedServer::acceptConnections()
{
    while (true) {
        const int socket = accept(m_listener, nullptr, nullptr);
        if (socket < 0)
            return;
        const std::lock_guard lock(m_mutex);
        if (m_stopping) {
            ::close(socket);
            return;
        }
        m_openSockets.push_back(socket);
        m_connections.emplace_back(&ScriptedServer::serve, this, socket);
    }
}

void ScriptedServer::serve(int socket)
{
    // Each byte a script sends alone is to arrive alone.
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    ScriptedConnection connection(socket, m_context.get(),
                                  [this](const RecordedRequest &request) { record(request); });
    m_script(connection);

    const std::lock_guard lock(m_mutex);
    std::erase(m_openSockets, socket);
    ::close(socket);
}

void ScriptedServer::record(const RecordedRequest &request)
{
    {
        const std::lock_guard lock(m_mutex);
        m_requests.append(request);
    }
    m_requestRecorded.notify_all();
}

quint16 unusedPort()
{
    const int socket = boundSocket();
    const quint16 port = portOf(socket);
    ::close(socket);
    return port;
}
