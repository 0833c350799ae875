#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The image that travels with a question.
struct ChatRequestImage
{
    /// Sent exactly as given.
    QByteArray data;
    std::optional<QString> name;
    std::optional<QString> mimeType;
};

/// What one request tells the service: the newest question only. The service knows the rest of
/// the conversation, if it does, by `userId` alone.
struct ChatRequest
{
    QString message;
    QString userId;
    std::optional<ChatRequestImage> image;
};
