#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// Where a model answers over HTTP, and how long it is waited for.
struct ModelService
{
    /// Whether the connection is encrypted and the certificate checked.
    bool usesTls = false;
    /// A name or an address, an IPv6 one without brackets.
    QString host;
    int port = 0;
    /// What comes before "/chat/completions"; begins with a slash unless empty, never ends in one.
    QString basePath;
    /// As the service calls it.
    QString modelName;
    /// Sent as a bearer token; empty when there is none.
    QByteArray key;

    std::chrono::milliseconds connectionLimit = std::chrono::seconds(10);
    /// The longest that the model may send no byte at all. A model that is first loaded from a disk
    /// and then reads a long question on a processor says nothing for minutes.
    std::chrono::milliseconds silenceLimit = std::chrono::minutes(4);
};

/// The service at `url`, such as "http://127.0.0.1:11434/v1"; nothing when that is no HTTP or HTTPS
/// address, or carries a user, a query or a fragment.
std::optional<ModelService> modelServiceAt(const QString &url);
