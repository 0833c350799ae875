// The values of the program and what keeps them: records and their JSON, the preference store,
// the conversation history, the preferences and the installation's identity.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUuid>

#include <optional>

/// One message of a chat, the user's or the assistant's. A plain value: a copy owns its text and
/// its preview, and two messages are equal when all their fields are.
struct ChatMessage
{
    QUuid id;
    QString text;
    bool isUser = false;
    /// File name of the attached image; absent without an attachment.
    std::optional<QString> attachmentName;
    /// JPEG preview of the attached image; absent when there is none. Empty bytes are not absent.
    std::optional<QByteArray> imagePreviewData;

    bool operator==(const ChatMessage &) const = default;
};

/// The name and the media type of an image that has none of its own.
inline const QString defaultImageName = QStringLiteral("imagen");
inline const QString defaultImageMimeType = QStringLiteral("image/jpeg");

// Lets QList move messages by memcpy(), which every field allows.
Q_DECLARE_TYPEINFO(ChatMessage, Q_RELOCATABLE_TYPE);
