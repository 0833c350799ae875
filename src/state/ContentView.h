#pragma once

#include "AuloraAppearance.h"
#include "AuloraTextSize.h"
#include "ConversationListModel.h"
#include "MessageListModel.h"
#include "StoredPreference.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

#include <optional>

class HistoryStore;
class PreferenceStore;

/// The main screen: the one owner of all mutable screen state and of every operation that changes
/// it. Views read the properties and call the operations; nothing else mutates the state.
/// Everything here belongs to the main thread.
class ContentView : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("MyApp makes the main screen")

    Q_PROPERTY(QString messageText READ messageText WRITE setMessageText NOTIFY messageTextChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(ConversationListModel *conversations READ conversations CONSTANT)
    Q_PROPERTY(MessageListModel *currentMessages READ currentMessages CONSTANT)
    Q_PROPERTY(bool replyHasStarted READ replyHasStarted NOTIFY replyHasStartedChanged)
    Q_PROPERTY(bool showClearHistoryConfirmation READ showClearHistoryConfirmation WRITE
                   setShowClearHistoryConfirmation NOTIFY showClearHistoryConfirmationChanged)
    Q_PROPERTY(bool showSettings READ showSettings WRITE setShowSettings NOTIFY showSettingsChanged)
    Q_PROPERTY(bool showImageImporter READ showImageImporter WRITE setShowImageImporter NOTIFY
                   showImageImporterChanged)
    Q_PROPERTY(bool hasSelectedImage READ hasSelectedImage NOTIFY selectedImageChanged)
    Q_PROPERTY(QString selectedImageTitle READ selectedImageTitle NOTIFY selectedImageChanged)
    Q_PROPERTY(bool hasImageImportError READ hasImageImportError NOTIFY imageImportErrorChanged)
    Q_PROPERTY(
        QString imageImportErrorText READ imageImportErrorText NOTIFY imageImportErrorChanged)
    Q_PROPERTY(
        bool isDropTargeted READ isDropTargeted WRITE setDropTargeted NOTIFY isDropTargetedChanged)
    Q_PROPERTY(
        QByteArray enlargedImageBytes READ enlargedImageBytes NOTIFY enlargedImageDataChanged)
    Q_PROPERTY(bool showImageViewer READ showImageViewer NOTIFY showImageViewerChanged)
    Q_PROPERTY(QString appearanceRawValue READ appearanceRawValue WRITE setAppearanceRawValue NOTIFY
                   appearanceRawValueChanged)
    Q_PROPERTY(QString textSizeRawValue READ textSizeRawValue WRITE setTextSizeRawValue NOTIFY
                   textSizeRawValueChanged)
    Q_PROPERTY(double textScale READ textScale NOTIFY textSizeRawValueChanged)
    Q_PROPERTY(bool imageAnalysisEnabled READ imageAnalysisEnabled WRITE setImageAnalysisEnabled
                   NOTIFY imageAnalysisEnabledChanged)
    Q_PROPERTY(bool showImagePreviews READ showImagePreviews WRITE setShowImagePreviews NOTIFY
                   showImagePreviewsChanged)

public:
    /// Both pointers are borrowed and outlive this object.
    ContentView(PreferenceStore *store, HistoryStore *historyStore, QObject *parent = nullptr);

    // State. Each getter yields the field's initial value until an operation changes it.
    QString messageText() const { return m_messageText; }
    void setMessageText(const QString &text);
    bool isLoading() const { return m_isLoading; }
    /// Raised by the send flow when an exchange begins, lowered when it ends.
    void setLoading(bool loading);
    ConversationListModel *conversations() { return &m_conversations; }
    MessageListModel *currentMessages() { return &m_currentMessages; }
    std::optional<QUuid> selectedConversationID() const { return m_conversations.selectedID(); }
    bool showClearHistoryConfirmation() const { return m_showClearHistoryConfirmation; }
    void setShowClearHistoryConfirmation(bool show);
    bool showSettings() const { return m_showSettings; }
    void setShowSettings(bool show);
    bool showImageImporter() const { return m_showImageImporter; }
    void setShowImageImporter(bool show);
    std::optional<QByteArray> selectedImageData() const { return m_selectedImageData; }
    std::optional<QString> selectedImageName() const { return m_selectedImageName; }
    std::optional<QString> selectedImageMimeType() const { return m_selectedImageMimeType; }
    std::optional<QString> imageImportError() const { return m_imageImportError; }
    bool isDropTargeted() const { return m_isDropTargeted; }
    void setDropTargeted(bool targeted);
    std::optional<QByteArray> enlargedImageData() const { return m_enlargedImageData; }
    bool showImageViewer() const { return m_showImageViewer; }

    // The four preferences, read from and written to the preference store directly.
    /// Raw value of an `AuloraAppearance`, or whatever text is stored.
    QString appearanceRawValue() const { return m_appearanceRawValue.value(); }
    void setAppearanceRawValue(const QString &rawValue) { m_appearanceRawValue.set(rawValue); }
    /// Raw value of an `AuloraTextSize`, or whatever text is stored.
    QString textSizeRawValue() const { return m_textSizeRawValue.value(); }
    void setTextSizeRawValue(const QString &rawValue) { m_textSizeRawValue.set(rawValue); }
    bool imageAnalysisEnabled() const { return m_imageAnalysisEnabled.value(); }
    void setImageAnalysisEnabled(bool enabled) { m_imageAnalysisEnabled.set(enabled); }
    bool showImagePreviews() const { return m_showImagePreviews.value(); }
    void setShowImagePreviews(bool show) { m_showImagePreviews.set(show); }

    // Queries.
    /// True while loading once the newest message of the shown conversation is the assistant's.
    bool replyHasStarted() const;
    /// What the fonts of messages are multiplied by.
    double textScale() const;
    bool hasSelectedImage() const { return m_selectedImageData.has_value(); }
    /// The pending image's name, or the default when it has none.
    QString selectedImageTitle() const;
    bool hasImageImportError() const { return m_imageImportError.has_value(); }
    QString imageImportErrorText() const { return m_imageImportError.value_or(QString()); }
    QByteArray enlargedImageBytes() const { return m_enlargedImageData.value_or(QByteArray()); }

    // Operations on conversations.
    /// Installs the stored conversations and selects the first, or starts a new conversation when
    /// nothing usable is stored. Called once, when the main screen first appears.
    void loadHistory();
    /// Hands the whole list to the history store.
    void saveHistory();
    /// Selects the first untouched default conversation, or makes one at the front and saves.
    /// Either way the composer is emptied.
    Q_INVOKABLE void startNewConversation();
    /// Selects `id`, which need not exist, and empties the composer, also for the same id again.
    Q_INVOKABLE void selectConversation(const QUuid &id);
    Q_INVOKABLE void requestClearHistory();
    /// Closes the settings, and asks 0.2 s later, when the sheet has gone.
    Q_INVOKABLE void requestClearHistoryFromSettings();
    /// Replaces everything by one fresh conversation, deletes the stored history, and saves.
    Q_INVOKABLE void clearHistory();
    /// Appends to the selected conversation and saves; dropped when there is none.
    void appendMessage(const ChatMessage &message);
    /// Titles the selected conversation, if it still has the default title, and saves: `text` on
    /// one line, cut and with an ellipsis where it is longer than a title may be.
    void updateTitle(const QString &text);
    /// Appends to a message's text, wherever it is; not saved. Dropped when there is no such
    /// message any more.
    void appendChunk(const QString &piece, const QUuid &messageID, const QUuid &conversationID);
    /// Trims a message's text at both ends; not saved.
    void trimMessage(const QUuid &messageID, const QUuid &conversationID);
    /// Ends loading and appends `text` as an assistant message, which saves.
    void appendAssistantNotice(const QString &text);

    // Operations on images.
    /// Makes the three fields of the pending image what is given.
    void setSelectedImage(const QByteArray &data, const std::optional<QString> &name,
                          const std::optional<QString> &mimeType);
    Q_INVOKABLE void clearSelectedImage();
    void setImageImportError(const QString &text);
    Q_INVOKABLE void dismissImageImportError();
    Q_INVOKABLE void openImageViewer(const QByteArray &bytes);
    Q_INVOKABLE void closeImageViewer();

Q_SIGNALS:
    void messageTextChanged();
    void isLoadingChanged();
    void replyHasStartedChanged();
    /// The exchange under way has its reply: an assistant message, perhaps still empty.
    void replyStarted();
    /// The exchange under way came to nothing, for the reason that `text` gives.
    void noticeAppended(const QString &text);
    void showClearHistoryConfirmationChanged();
    void showSettingsChanged();
    void showImageImporterChanged();
    void selectedImageChanged();
    /// A conversation is about to be chosen, for which text and pending image are discarded.
    void composerAboutToBeEmptied();
    void imageImportErrorChanged();
    void isDropTargetedChanged();
    void enlargedImageDataChanged();
    void showImageViewerChanged();
    void appearanceRawValueChanged();
    void textSizeRawValueChanged();
    void imageAnalysisEnabledChanged();
    void showImagePreviewsChanged();

private:
    /// Indexes of a message and of the conversation it is in.
    struct MessagePlace
    {
        int conversation;
        int message;
    };

    void setShowImageViewer(bool show);
    void clearComposer();
    std::optional<int> selectedIndex() const;
    std::optional<MessagePlace> placeOf(const QUuid &messageID, const QUuid &conversationID) const;
    void updateReplyHasStarted();
    void imageAnalysisSwitched();

    PreferenceStore *m_store;
    HistoryStore *m_historyStore;

    QString m_messageText;
    bool m_isLoading = false;
    ConversationListModel m_conversations;
    MessageListModel m_currentMessages;
    bool m_replyHasStarted = false;
    bool m_showClearHistoryConfirmation = false;
    bool m_showSettings = false;
    bool m_showImageImporter = false;
    std::optional<QByteArray> m_selectedImageData;
    std::optional<QString> m_selectedImageName;
    std::optional<QString> m_selectedImageMimeType;
    std::optional<QString> m_imageImportError;
    bool m_isDropTargeted = false;
    std::optional<QByteArray> m_enlargedImageData;
    bool m_showImageViewer = false;
    StoredPreference<QString> m_appearanceRawValue{
        m_store, QStringLiteral("aulora.settings.appearance"), rawValue(AuloraAppearance::system),
        this, &ContentView::appearanceRawValueChanged};
    StoredPreference<QString> m_textSizeRawValue{
        m_store, QStringLiteral("aulora.settings.textSize"), rawValue(AuloraTextSize::standard),
        this, &ContentView::textSizeRawValueChanged};
    StoredPreference<bool> m_imageAnalysisEnabled{m_store,
                                                  QStringLiteral("aulora.settings.imageAnalysis"),
                                                  true, this, &ContentView::imageAnalysisSwitched};
    StoredPreference<bool> m_showImagePreviews{m_store,
                                               QStringLiteral("aulora.settings.imagePreviews"),
                                               true, this, &ContentView::showImagePreviewsChanged};
};
