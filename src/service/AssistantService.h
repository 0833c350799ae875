// The exchange with the assistant: the request, the streamed reply and its lines, the failures and
// their Spanish descriptions, and the send flow that ties them to the screen state.
#pragma once

#include <QList>
#include <QSslCertificate>
#include <QUrl>

#include <chrono>

/// Where the assistant is and how it is reached. Fixed when the program is built.
struct AssistantService
{
    /// Always https, always the path /api/chat.
    QUrl apiURL;
    /// Trusted besides the system's roots.
    QList<QSslCertificate> extraTrustAnchors;
    /// How long the service may stay silent before an exchange fails.
    std::chrono::milliseconds idleTimeout = std::chrono::seconds(300);
};
