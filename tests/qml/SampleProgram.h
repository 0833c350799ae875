#pragma once

#include "ContentView.h"
#include "HistoryStore.h"
#include "ImageIntake.h"
#include "InstallationIdentity.h"
#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"
#include "SendFlow.h"

#include <QObject>

/// Everything behind the window, on a preference store of its own, for a QML test to hand to a
/// window and to change as a reply or a file would. Its assistant cannot be reached.
class SampleProgram : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ContentView *contentView READ contentView CONSTANT)
    Q_PROPERTY(ImageIntake *imageIntake READ imageIntake CONSTANT)
    Q_PROPERTY(SendFlow *sendFlow READ sendFlow CONSTANT)

public:
    explicit SampleProgram(QObject *parent = nullptr)
        : QObject(parent)
    {
        m_contentView.loadHistory();
    }

    ContentView *contentView() { return &m_contentView; }
    ImageIntake *imageIntake() { return &m_imageIntake; }
    SendFlow *sendFlow() { return &m_sendFlow; }

    Q_INVOKABLE void setLoading(bool loading) { m_contentView.setLoading(loading); }
    Q_INVOKABLE void failWith(const QString &notice)
    {
        m_contentView.appendAssistantNotice(notice);
    }
    Q_INVOKABLE void refuseImage(const QString &reason)
    {
        m_contentView.setImageImportError(reason);
    }
    Q_INVOKABLE void takeImage(const QByteArray &bytes, const QString &name)
    {
        m_contentView.setSelectedImage(bytes, name, QStringLiteral("image/png"));
    }
    Q_INVOKABLE void ask(const QString &question, const QByteArray &preview = {})
    {
        m_contentView.updateTitle(question);
        append(question, true, preview);
    }
    Q_INVOKABLE void reply(const QString &text) { append(text, false, {}); }
    /// Appends to the newest message of the conversation shown.
    Q_INVOKABLE void appendText(const QString &piece)
    {
        m_contentView.appendChunk(piece, m_contentView.currentMessages()->messages().constLast().id,
                                  *m_contentView.selectedConversationID());
    }
    Q_INVOKABLE QString storedAppearance() const
    {
        return m_store.string(QStringLiteral("aulora.settings.appearance")).value_or(QString());
    }

private:
    void append(const QString &text, bool isUser, const QByteArray &preview)
    {
        ChatMessage message;
        message.id = QUuid::createUuid();
        message.text = text;
        message.isUser = isUser;
        if (!preview.isEmpty())
            message.imagePreviewData = preview;
        m_contentView.appendMessage(message);
    }
    static AssistantService unreachableAssistant()
    {
        AssistantService service;
        service.apiURL = QUrl(QStringLiteral("https://127.0.0.1:9/api/chat"));
        return service;
    }

    PreferenceStore m_store{
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>())};
    HistoryStore m_historyStore{&m_store};
    InstallationIdentity m_identity{&m_store};
    ContentView m_contentView{&m_store, &m_historyStore};
    ImageIntake m_imageIntake{&m_contentView};
    SendFlow m_sendFlow{&m_contentView, &m_identity,
                        [](const QByteArray &) { return std::optional<QByteArray>(); },
                        unreachableAssistant()};
};
