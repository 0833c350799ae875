#include "ContentView.h"

#include "HistoryStore.h"

#include <QTextBoundaryFinder>
#include <QTimer>

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Time for the settings sheet to finish closing before the alert is presented.
constexpr auto alertAfterSettingsDelay = 200ms;

/// In user-perceived characters. A longer title is cut to this and gets an ellipsis.
constexpr int maximumTitleLength = 34;

QString titleFromText(QString text)
{
    text.replace(u'\n', u' ');
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    for (int kept = 0; kept < maximumTitleLength; ++kept) {
        if (characters.toNextBoundary() == -1)
            return text;
    }
    const qsizetype cut = characters.position();
    return cut < text.size() ? text.left(cut) + u'…' : text;
}

Conversation freshConversation()
{
    return {.id = QUuid::createUuid(), .title = defaultConversationTitle, .messages = {}};
}

} // namespace

ContentView::ContentView(PreferenceStore *store, HistoryStore *historyStore, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_historyStore(historyStore)
    , m_currentMessages(&m_conversations)
{
    connect(&m_currentMessages, &MessageListModel::changed, this,
            &ContentView::updateReplyHasStarted);
    connect(this, &ContentView::isLoadingChanged, this, &ContentView::updateReplyHasStarted);
}

void ContentView::setMessageText(const QString &text)
{
    if (m_messageText == text)
        return;
    m_messageText = text;
    Q_EMIT messageTextChanged();
}

void ContentView::setLoading(bool loading)
{
    if (m_isLoading == loading)
        return;
    m_isLoading = loading;
    Q_EMIT isLoadingChanged();
}

void ContentView::setShowClearHistoryConfirmation(bool show)
{
    if (m_showClearHistoryConfirmation == show)
        return;
    m_showClearHistoryConfirmation = show;
    Q_EMIT showClearHistoryConfirmationChanged();
}

void ContentView::setShowSettings(bool show)
{
    if (m_showSettings == show)
        return;
    m_showSettings = show;
    Q_EMIT showSettingsChanged();
}

void ContentView::setShowImageImporter(bool show)
{
    if (m_showImageImporter == show)
        return;
    m_showImageImporter = show;
    Q_EMIT showImageImporterChanged();
}

void ContentView::setDropTargeted(bool targeted)
{
    if (m_isDropTargeted == targeted)
        return;
    m_isDropTargeted = targeted;
    Q_EMIT isDropTargetedChanged();
}

bool ContentView::replyHasStarted() const
{
    const QList<ChatMessage> &messages = m_currentMessages.messages();
    return m_isLoading && !messages.isEmpty() && !messages.constLast().isUser;
}

double ContentView::textScale() const
{
    return scaleFactorForRawValue(textSizeRawValue());
}

QString ContentView::selectedImageTitle() const
{
    return m_selectedImageName.value_or(defaultImageName);
}

void ContentView::loadHistory()
{
    QList<Conversation> stored = m_historyStore->load();
    if (stored.isEmpty()) {
        startNewConversation();
        return;
    }
    const QUuid newest = stored.constFirst().id;
    m_conversations.replaceAll(std::move(stored));
    m_conversations.select(newest);
}

void ContentView::saveHistory()
{
    m_historyStore->save(m_conversations.conversations());
}

void ContentView::startNewConversation()
{
    Q_EMIT composerAboutToBeEmptied();
    const QList<Conversation> &all = m_conversations.conversations();
    const auto untouched
        = std::find_if(all.cbegin(), all.cend(), [](const Conversation &conversation) {
              return conversation.messages.isEmpty()
                  && conversation.title == defaultConversationTitle;
          });
    if (untouched != all.cend()) {
        selectConversation(untouched->id);
        return;
    }
    const Conversation conversation = freshConversation();
    m_conversations.prepend(conversation);
    selectConversation(conversation.id);
    saveHistory();
}

void ContentView::selectConversation(const QUuid &id)
{
    Q_EMIT composerAboutToBeEmptied();
    m_conversations.select(id);
    clearComposer();
}

void ContentView::requestClearHistory()
{
    setShowClearHistoryConfirmation(true);
}

void ContentView::requestClearHistoryFromSettings()
{
    setShowSettings(false);
    QTimer::singleShot(alertAfterSettingsDelay, Qt::PreciseTimer, this,
                       [this] { setShowClearHistoryConfirmation(true); });
}

void ContentView::clearHistory()
{
    Q_EMIT composerAboutToBeEmptied();
    const Conversation conversation = freshConversation();
    m_conversations.replaceAll({conversation});
    selectConversation(conversation.id);
    m_historyStore->remove();
    saveHistory();
}

void ContentView::appendMessage(const ChatMessage &message)
{
    const std::optional<int> index = selectedIndex();
    if (!index)
        return;
    m_conversations.appendMessage(*index, message);
    saveHistory();
    if (m_isLoading && !message.isUser)
        Q_EMIT replyStarted();
}

void ContentView::updateTitle(const QString &text)
{
    const std::optional<int> index = selectedIndex();
    if (!index || m_conversations.conversations().at(*index).title != defaultConversationTitle)
        return;
    m_conversations.setTitle(*index, titleFromText(text));
    saveHistory();
}

void ContentView::appendChunk(const QString &piece, const QUuid &messageID,
                              const QUuid &conversationID)
{
    if (const auto place = placeOf(messageID, conversationID))
        m_conversations.appendMessageText(place->conversation, place->message, piece);
}

void ContentView::trimMessage(const QUuid &messageID, const QUuid &conversationID)
{
    if (const auto place = placeOf(messageID, conversationID)) {
        const Conversation &conversation = m_conversations.conversations().at(place->conversation);
        m_conversations.setMessageText(place->conversation, place->message,
                                       conversation.messages.at(place->message).text.trimmed());
    }
}

void ContentView::appendAssistantNotice(const QString &text)
{
    setLoading(false);
    appendMessage({.id = QUuid::createUuid(),
                   .text = text,
                   .isUser = false,
                   .attachmentName = std::nullopt,
                   .imagePreviewData = std::nullopt});
    Q_EMIT noticeAppended(text);
}

void ContentView::setSelectedImage(const QByteArray &data, const std::optional<QString> &name,
                                   const std::optional<QString> &mimeType)
{
    m_selectedImageData = data;
    m_selectedImageName = name;
    m_selectedImageMimeType = mimeType;
    Q_EMIT selectedImageChanged();
}

void ContentView::clearSelectedImage()
{
    if (!m_selectedImageData && !m_selectedImageName && !m_selectedImageMimeType)
        return;
    m_selectedImageData.reset();
    m_selectedImageName.reset();
    m_selectedImageMimeType.reset();
    Q_EMIT selectedImageChanged();
}

void ContentView::setImageImportError(const QString &text)
{
    m_imageImportError = text;
    Q_EMIT imageImportErrorChanged();
}

void ContentView::dismissImageImportError()
{
    if (!m_imageImportError)
        return;
    m_imageImportError.reset();
    Q_EMIT imageImportErrorChanged();
}

void ContentView::openImageViewer(const QByteArray &bytes)
{
    m_enlargedImageData = bytes;
    Q_EMIT enlargedImageDataChanged();
    setShowImageViewer(true);
}

void ContentView::closeImageViewer()
{
    setShowImageViewer(false);
    m_enlargedImageData.reset();
    Q_EMIT enlargedImageDataChanged();
}

void ContentView::setShowImageViewer(bool show)
{
    if (m_showImageViewer == show)
        return;
    m_showImageViewer = show;
    Q_EMIT showImageViewerChanged();
}

void ContentView::clearComposer()
{
    setMessageText({});
    clearSelectedImage();
}

std::optional<int> ContentView::selectedIndex() const
{
    const std::optional<QUuid> id = m_conversations.selectedID();
    const int index = id ? m_conversations.indexOf(*id) : -1;
    return index < 0 ? std::nullopt : std::optional(index);
}

std::optional<ContentView::MessagePlace> ContentView::placeOf(const QUuid &messageID,
                                                              const QUuid &conversationID) const
{
    const int conversation = m_conversations.indexOf(conversationID);
    const int message
        = conversation < 0 ? -1 : m_conversations.indexOfMessage(conversation, messageID);
    return message < 0 ? std::nullopt : std::optional(MessagePlace{conversation, message});
}

void ContentView::updateReplyHasStarted()
{
    if (m_replyHasStarted == replyHasStarted())
        return;
    m_replyHasStarted = !m_replyHasStarted;
    Q_EMIT replyHasStartedChanged();
}

void ContentView::imageAnalysisSwitched()
{
    // A pending image is never sent after the switch was turned off.
    if (!imageAnalysisEnabled())
        clearSelectedImage();
    Q_EMIT imageAnalysisEnabledChanged();
}
