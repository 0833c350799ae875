#include "ScriptedConnection.h"

#include <QList>

#include <array>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace {

constexpr QByteArrayView headEnd("\r\n\r\n");

/// The number that the head's Content-Length gives; 0 without one.
qsizetype contentLength(const QByteArray &head)
{
    for (const QByteArray &line : head.split('\n')) {
        const QByteArray name = "content-length:";
        if (line.toLower().startsWith(name))
            return line.mid(name.size()).trimmed().toLongLong();
    }
    return 0;
}

} // namespace

ScriptedConnection::ScriptedConnection(int socket, ssl_ctx_st *context, Recorder record)
    : m_socket(socket)
    , m_context(context)
    , m_record(std::move(record))
{ }

ScriptedConnection::~ScriptedConnection() = default;

bool ScriptedConnection::startTls()
{
    m_tls.reset(SSL_new(m_context), SSL_free);
    SSL_set_fd(m_tls.get(), m_socket);
    return SSL_accept(m_tls.get()) == 1;
}

void ScriptedConnection::waitForBytes()
{
    pollfd socket{.fd = m_socket, .events = POLLIN, .revents = 0};
    while (poll(&socket, 1, -1) == 0) { }
}

void ScriptedConnection::openTunnel()
{
    readHead();
    m_received.clear();
    send("HTTP/1.1 200 Connection established\r\n\r\n");
}

void ScriptedConnection::readRequest(std::chrono::milliseconds pause)
{
    const qsizetype headSize = receiveHead();
    const qsizetype size = headSize + contentLength(m_received.first(headSize));
    constexpr qsizetype pauseSize = qsizetype(1024) * 1024;
    qsizetype pauseAt = headSize + pauseSize;
    while (m_received.size() < size && receive() > 0) {
        if (m_received.size() < pauseAt)
            continue;
        pauseAt += pauseSize;
        std::this_thread::sleep_for(pause);
    }
    recordRequest(headSize);
}

void ScriptedConnection::readHead()
{
    recordRequest(receiveHead());
}

/// The size of the head, or of what came of it.
qsizetype ScriptedConnection::receiveHead()
{
    qsizetype end = -1;
    while ((end = m_received.indexOf(headEnd)) < 0) {
        if (receive() <= 0)
            return m_received.size();
    }
    return end + headEnd.size();
}

void ScriptedConnection::recordRequest(qsizetype headSize)
{
    if (!m_received.isEmpty())
        m_record({.head = m_received.first(headSize), .body = m_received.sliced(headSize)});
}

qsizetype ScriptedConnection::receive()
{
    // Nothing larger fits a TLS record.
    std::array<char, 16'384> buffer;
    const qsizetype size = m_tls ? SSL_read(m_tls.get(), buffer.data(), int(buffer.size()))
                                 : recv(m_socket, buffer.data(), buffer.size(), 0);
    if (size > 0)
        m_received.append(buffer.data(), size);
    return size;
}

bool ScriptedConnection::send(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const qsizetype sent = m_tls ? SSL_write(m_tls.get(), bytes.data(), int(bytes.size()))
                                     : ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes = bytes.sliced(sent);
    }
    return true;
}

void ScriptedConnection::sendByteByByte(QByteArrayView bytes)
{
    for (qsizetype i = 0; i < bytes.size(); ++i)
        send(bytes.sliced(i, 1));
}

void ScriptedConnection::sendPastTls(QByteArrayView bytes)
{
    ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void ScriptedConnection::close()
{
    if (m_tls)
        SSL_shutdown(m_tls.get());
    cut();
}

void ScriptedConnection::cut()
{
    ::shutdown(m_socket, SHUT_WR);
    waitUntilClientLeaves();
}

void ScriptedConnection::reset()
{
    // With no time to linger, closing discards what is left and resets the connection.
    const linger noTime{.l_onoff = 1, .l_linger = 0};
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &noTime, sizeof noTime);
}

void ScriptedConnection::waitUntilClientLeaves()
{
    std::array<char, 4096> ignored;
    while (recv(m_socket, ignored.data(), ignored.size(), 0) > 0) { }
}

void ScriptedConnection::waitWithoutReading()
{
    pollfd socket{.fd = m_socket, .events = POLLRDHUP, .revents = 0};
    while (poll(&socket, 1, -1) == 0) { }
}
