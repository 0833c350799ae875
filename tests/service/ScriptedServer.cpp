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

/// A socket bound to `port` of the loopback interface, or to a free one for 0; -1 when it is taken.
int boundSocket(int family, quint16 port = 0)
{
    sockaddr_in ipv4{};
    ipv4.sin_family = AF_INET;
    ipv4.sin_port = htons(port);
    ipv4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in6 ipv6{};
    ipv6.sin6_family = AF_INET6;
    ipv6.sin6_port = htons(port);
    ipv6.sin6_addr = in6addr_loopback;

    const int socket = ::socket(family, SOCK_STREAM, 0);
    const int result = family == AF_INET
        ? bind(socket, reinterpret_cast<const sockaddr *>(&ipv4), sizeof ipv4)
        : bind(socket, reinterpret_cast<const sockaddr *>(&ipv6), sizeof ipv6);
    if (result == 0)
        return socket;
    ::close(socket);
    return -1;
}

quint16 portOf(int socket)
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.ss_family == AF_INET
                     ? reinterpret_cast<const sockaddr_in &>(address).sin_port
                     : reinterpret_cast<const sockaddr_in6 &>(address).sin6_port);
}

std::vector<int> boundSockets(Loopback loopback)
{
    if (loopback != Loopback::Both)
        return {boundSocket(loopback == Loopback::IPv4 ? AF_INET : AF_INET6)};
    while (true) {
        const int ipv4 = boundSocket(AF_INET);
        const int ipv6 = boundSocket(AF_INET6, portOf(ipv4));
        if (ipv6 >= 0)
            return {ipv4, ipv6};
        ::close(ipv4);
    }
}

std::shared_ptr<SSL_CTX> contextFor(const ServerCredentials &credentials)
{
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
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

ScriptedServer::ScriptedServer(const ServerCredentials &credentials, Script script,
                               Loopback loopback)
    : m_script(std::move(script))
    , m_context(contextFor(credentials))
    , m_listeners(boundSockets(loopback))
    , m_port(portOf(m_listeners.front()))
{
    // OpenSSL writes to sockets whose client has gone.
    std::signal(SIGPIPE, SIG_IGN);
    for (const int listener : m_listeners) {
        listen(listener, SOMAXCONN);
        m_acceptors.emplace_back(&ScriptedServer::acceptConnections, this, listener);
    }
}

ScriptedServer::~ScriptedServer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        for (const int socket : m_openSockets)
            shutdown(socket, SHUT_RDWR);
    }
    for (const int listener : m_listeners)
        shutdown(listener, SHUT_RDWR);
    for (std::thread &acceptor : m_acceptors)
        acceptor.join();
    for (std::thread &connection : m_connections)
        connection.join();
    for (const int listener : m_listeners)
        ::close(listener);
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

void ScriptedServer::acceptConnections(int listener)
{
    while (true) {
        const int socket = accept(listener, nullptr, nullptr);
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

bool hasIPv6Loopback()
{
    const int socket = boundSocket(AF_INET6);
    if (socket >= 0)
        ::close(socket);
    return socket >= 0;
}

quint16 unusedPort()
{
    const int socket = boundSocket(AF_INET);
    const quint16 port = portOf(socket);
    ::close(socket);
    return port;
}
