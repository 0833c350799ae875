// The exchange with the assistant: the request, the streamed reply and its lines, the failures and
// their Spanish descriptions, and the send flow that ties them to the screen state.
#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QUrl>

#include <chrono>

/// Where the assistant is and how it is reached. Fixed when the program is built.
struct AssistantService
{
    /// Always https, always the path /api/chat.
    QUrl apiURL;
    /// PEM certificates trusted besides the system's roots; empty for none. Kept as text because
    /// reading it loads the TLS library, which no start of the program should wait for.
    QByteArray extraTrustAnchors;
    /// How long the service may stay silent before an exchange fails.
    std::chrono::milliseconds idleTimeout = std::chrono::seconds(300);
};

/// How TLS decides whether it is talking to `service`: by the system's roots and the extra anchors.
/// Loads the TLS library and may read all roots, which takes longer than a frame.
QSslConfiguration tlsConfiguration(const AssistantService &service);
