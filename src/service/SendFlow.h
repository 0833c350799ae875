#pragma once

#include "AssistantService.h"
#include "ChatRequest.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <optional>

class ChatRequestBody;
class ContentView;
class InstallationIdentity;
class ReplyTask;

/// What happens between the press of the send button and the finished, saved reply.
class SendFlow : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("MyApp makes the send flow")

public:
    /// Image bytes in, JPEG preview out, or nothing when none can be made.
    using PreviewMaker = std::function<std::optional<QByteArray>(const QByteArray &)>;
    /// Calls what it is given once, when every image that the composer was given is pending or will
    /// never be. What it is given meanwhile is dropped.
    using ImageWait = std::function<void(std::function<void()>)>;

    /// All pointers are borrowed and outlive this object.
    SendFlow(ContentView *contentView, InstallationIdentity *identity, PreviewMaker makePreview,
             AssistantService service, ImageWait waitForImages = waitForNoImages,
             QObject *parent = nullptr);

    /// Sends what the composer's text is now, with its image: one that is still on its way is
    /// waited for, and the text goes alone when nothing comes of it. Text written meanwhile stays.
    /// Returns as soon as the exchange has begun, or the wait; does nothing when there is nothing
    /// to send or an exchange is under way.
    Q_INVOKABLE void sendMessage();

    /// Saves a reply that is still growing when the program ends, as it is shown: not trimmed, and
    /// without a notice. Does nothing before its first line.
    void saveCutReply();

private:
    static void waitForNoImages(const std::function<void()> &send) { send(); }
    /// Whether there is something to send with the composer's text being `question`.
    bool isSendable(const QString &question) const;
    /// Sends `question`, which was the composer's text, and the pending image.
    void send(const QString &question);
    /// The image to be sent: none while image analysis is off, whatever the composer holds.
    std::optional<ChatRequestImage> pendingImage() const;
    void startExchange(const ChatRequestBody &body, const QUuid &assistantMessageID,
                       const QUuid &conversationID);

    ContentView *m_contentView;
    InstallationIdentity *m_identity;
    PreviewMaker m_makePreview;
    AssistantService m_service;
    ImageWait m_waitForImages;
    /// The reply under way, if any.
    QPointer<ReplyTask> m_replyTask;
};
