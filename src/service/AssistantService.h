#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>

/// Where the assistant is and how it is reached. Fixed when the program is built.
struct AssistantService
{
    /// Always https.
    QUrl apiURL;
    /// PEM certificates trusted besides the system's roots; empty for none.
    QByteArray extraTrustAnchors;
    /// How long the network may stay silent before an exchange fails.
    std::chrono::milliseconds idleTimeout = std::chrono::seconds(300);
};

/// PEM of all certificates that the service's own may be signed by: the extra anchors and those in
/// the file `systemRoots`, if there is one.
QByteArray trustAnchors(const AssistantService &service, const QString &systemRoots);
