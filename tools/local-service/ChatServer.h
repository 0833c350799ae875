#pragma once

#include "ServiceOptions.h"

#include <QString>

#include <chrono>
#include <memory>
#include <optional>

class ChatEndpoint;
class RequestLog;

/// Serves the endpoint over TLS, one thread a connection, and paces every answer line by line.
class ChatServer
{
public:
    /// `endpoint` and `log` are borrowed and outlive this object.
    ChatServer(ServiceOptions options, ChatEndpoint &endpoint, RequestLog &log);
    /// Ends what still runs; may take as long as a silent client's time limit.
    ~ChatServer();

    /// Begins to serve in the background. On failure, a Spanish sentence that says why.
    std::optional<QString> start();

    /// The address clients use, once started.
    QString url() const;

    /// Takes no more connections and cuts the answers under way. Whether all ended within `grace`.
    bool stop(std::chrono::milliseconds grace);

private:
    struct Engine;
    std::unique_ptr<Engine> m_engine;
};
