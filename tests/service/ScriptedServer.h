#pragma once

#include "ScriptedConnection.h"
#include "TestCertificates.h"

#include <QList>
#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// Where on the loopback interface a server listens.
enum class Loopback {
    IPv4,
    IPv6,
    Both, ///< on one port
};

/// A TLS server on a free port of the loopback interface, nothing but 127.0.0.1 and ::1, that does
/// to each client what its script says. Uses sockets and OpenSSL alone, so that it does not share
/// faults with the code that it tests.
class ScriptedServer
{
public:
    /// What happens on each connection, on a thread of its own. When it returns the socket closes.
    using Script = std::function<void(ScriptedConnection &)>;

    ScriptedServer(const ServerCredentials &credentials, Script script,
                   Loopback loopback = Loopback::IPv4);
    ~ScriptedServer();

    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    quint16 port() const { return m_port; }
    /// How many clients have connected, whether or not they sent anything.
    int connectionCount() const;
    /// The requests of all connections, in the order they came.
    QList<RecordedRequest> requests() const;
    /// True as soon as `count` requests have come; false when they have not within `patience`.
    bool waitForRequests(int count, std::chrono::milliseconds patience) const;

private:
    void acceptConnections(int listener);
    void serve(int socket);
    void record(const RecordedRequest &request);

    Script m_script;
    std::shared_ptr<ssl_ctx_st> m_context;
    std::vector<int> m_listeners;
    quint16 m_port = 0;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_requestRecorded;
    QList<RecordedRequest> m_requests;
    std::vector<int> m_openSockets;
    bool m_stopping = false;
    std::vector<std::thread> m_connections;
    std::vector<std::thread> m_acceptors;
};

/// Whether this system has the address ::1.
bool hasIPv6Loopback();

/// A port of the loopback interface on which nobody listens.
quint16 unusedPort();
