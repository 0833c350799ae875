#pragma once

#include "ContentView.h"
#include "ConversationCoding.h"
#include "HistoryStore.h"
#include "InstallationIdentity.h"
#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"
#include "SendFlow.h"

#include <functional>
#include <memory>

/// A whole chat on a preference store of its own, with one conversation, fresh and selected.
struct TestChat
{
    PreferenceStore store{
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>())};
    HistoryStore history{&store};
    InstallationIdentity identity{&store};
    ContentView view{&store, &history};
    int previewsMade = 0;
    /// While true a question waits, and is sent by calling `sendWaiting`.
    bool isImageOnItsWay = false;
    std::function<void()> sendWaiting;
    SendFlow sendFlow;

    static constexpr auto imageWithoutPreview = "no picture";

    enum class Start {
        BeforeTheHistoryIsLoaded,
        WithTheHistoryLoaded,
    };

    explicit TestChat(const AssistantService &service, Start start = Start::WithTheHistoryLoaded)
        : sendFlow(
              &view, &identity, [this](const QByteArray &image) { return preview(image); }, service,
              [this](const std::function<void()> &send) { waitForImage(send); })
    {
        if (start == Start::WithTheHistoryLoaded)
            view.loadHistory();
    }

    void send(const QString &text)
    {
        view.setMessageText(text);
        sendFlow.sendMessage();
    }

    const QList<Conversation> &conversations() { return view.conversations()->conversations(); }
    const QList<ChatMessage> &messages() { return view.currentMessages()->messages(); }

    /// The history as the store has it now.
    QList<Conversation> stored() const
    {
        const auto document = store.data(HistoryStore::historyKey);
        const auto decoded = decodeConversations(document.value_or(QByteArray()));
        const auto *conversations = std::get_if<QList<Conversation>>(&decoded);
        return conversations ? *conversations : QList<Conversation>();
    }

private:
    void waitForImage(const std::function<void()> &send)
    {
        if (isImageOnItsWay)
            sendWaiting = send;
        else
            send();
    }

    std::optional<QByteArray> preview(const QByteArray &image)
    {
        ++previewsMade;
        if (image == imageWithoutPreview)
            return std::nullopt;
        return "preview of " + image.left(8);
    }
};
