#pragma once

#include "AssistantService.h"
#include "ChatRequest.h"

#include <QByteArray>
#include <QFuture>
#include <QObject>
#include <QPointer>
#include <QSslConfiguration>
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

    /// All pointers are borrowed and outlive this object.
    SendFlow(ContentView *contentView, InstallationIdentity *identity, PreviewMaker makePreview,
             AssistantService service, QObject *parent = nullptr);

    /// Sends the composer's text and pending image. Returns as soon as the exchange has begun;
    /// does nothing when there is nothing to send or an exchange is under way.
    Q_INVOKABLE void sendMessage();

    /// Saves the reply that the end of the program cuts, as it is shown: not trimmed, and without
    /// a notice. Does nothing when none has begun to appear.
    void saveCutReply();

private:
    /// The image to be sent: none while image analysis is off, whatever the composer holds.
    std::optional<ChatRequestImage> pendingImage() const;
    void startExchange(const ChatRequestBody &body, const QUuid &assistantMessageID,
                       const QUuid &conversationID);

    ContentView *m_contentView;
    InstallationIdentity *m_identity;
    PreviewMaker m_makePreview;
    AssistantService m_service;
    /// Loaded at the first question, and off the main thread.
    QFuture<QSslConfiguration> m_tlsConfiguration;
    /// The reply under way, if any.
    QPointer<ReplyTask> m_replyTask;
};
