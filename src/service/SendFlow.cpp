#include "SendFlow.h"

#include "AssistantExchange.h"
#include "ChatRequestBody.h"
#include "ContentView.h"
#include "InstallationIdentity.h"
#include "ReplyTask.h"

#include <utility>

using namespace Qt::StringLiterals;

SendFlow::SendFlow(ContentView *contentView, InstallationIdentity *identity,
                   PreviewMaker makePreview, AssistantService service, ImageWait waitForImages,
                   QObject *parent)
    : QObject(parent)
    , m_contentView(contentView)
    , m_identity(identity)
    , m_makePreview(std::move(makePreview))
    , m_service(std::move(service))
    , m_waitForImages(std::move(waitForImages))
{ }

void SendFlow::sendMessage()
{
    const QString question = m_contentView->messageText();
    if (!isSendable(question) || m_contentView->isLoading())
        return;
    m_waitForImages([this, question] { send(question); });
}

bool SendFlow::isSendable(const QString &question) const
{
    return !question.trimmed().isEmpty() || pendingImage();
}

void SendFlow::send(const QString &question)
{
    // An image that was sent by itself may have been taken away meanwhile.
    if (!isSendable(question))
        return;
    const QString text = question.trimmed();
    const std::optional<ChatRequestImage> image = pendingImage();
    if (!m_contentView->selectedConversationID())
        m_contentView->startNewConversation();
    const std::optional<QUuid> conversationID = m_contentView->selectedConversationID();
    if (!conversationID)
        return;

    const QString requestText = text.isEmpty() ? u"Analizá esta imagen con finalidad educativa "
                                                 u"médica. Describí los hallazgos relevantes y "
                                                 "explicalos de forma didáctica."_s
                                               : text;
    m_contentView->updateTitle(requestText);
    m_contentView->appendMessage(
        {.id = QUuid::createUuid(),
         .text = text.isEmpty() ? u"Analizar imagen"_s : text,
         .isUser = true,
         .attachmentName = image ? image->name : std::nullopt,
         .imagePreviewData = image ? m_makePreview(image->data) : std::nullopt});
    if (m_contentView->messageText() == question)
        m_contentView->setMessageText({});
    m_contentView->clearSelectedImage();
    m_contentView->setLoading(true);

    const QUuid assistantMessageID = QUuid::createUuid();
    const auto body = ChatRequestBody::serialise(
        {.message = requestText, .userId = m_identity->installationUserId(), .image = image});
    if (!body) {
        m_contentView->appendAssistantNotice(u"No pude preparar la consulta."_s);
        return;
    }
    startExchange(*body, assistantMessageID, *conversationID);
}

void SendFlow::saveCutReply()
{
    if (m_replyTask)
        m_replyTask->saveAsShown();
}

std::optional<ChatRequestImage> SendFlow::pendingImage() const
{
    const std::optional<QByteArray> data = m_contentView->selectedImageData();
    if (!data || !m_contentView->imageAnalysisEnabled())
        return std::nullopt;
    return ChatRequestImage{.data = *data,
                            .name = m_contentView->selectedImageName(),
                            .mimeType = m_contentView->selectedImageMimeType()};
}

void SendFlow::startExchange(const ChatRequestBody &body, const QUuid &assistantMessageID,
                             const QUuid &conversationID)
{
    auto *exchange = new AssistantExchange(m_service, body, this);
    auto *task = new ReplyTask(m_contentView, assistantMessageID, conversationID, exchange);
    m_replyTask = task;
    connect(exchange, &AssistantExchange::linesReceived, task, &ReplyTask::appendLines);
    connect(exchange, &AssistantExchange::finished, task, &ReplyTask::finish);
    connect(exchange, &AssistantExchange::failed, task, &ReplyTask::fail);
    connect(exchange, &AssistantExchange::finished, exchange, &QObject::deleteLater);
    connect(exchange, &AssistantExchange::failed, exchange, &QObject::deleteLater);

    // In the event loop's next turn: a question that the program's end sends is saved, no more.
    QMetaObject::invokeMethod(exchange, &AssistantExchange::start, Qt::QueuedConnection);
}
