#pragma once

#include "ChatMessage.h"
#include "ConversationListModel.h"
#include "MessageListModel.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

#include <memory>

/// A chat pane in a window of its own, over conversations that a test fills.
class ChatPaneScene
{
public:
    explicit ChatPaneScene(QSize size = {763, 600});

    /// Adds a conversation in front and shows it.
    void show(const QList<ChatMessage> &messages);
    /// Shows the conversation at `index`, newest first.
    void select(int index);
    /// Adds to the conversation shown.
    void append(const ChatMessage &message);
    void appendText(const QString &piece);
    void setLoading(bool loading);

    QQuickView &view() { return *m_view; }
    QQuickItem *pane() const;
    const QList<ChatMessage> &messages() const { return m_messages.messages(); }
    /// The bubbles shown, oldest first.
    QList<QQuickItem *> bubbles() const;
    QString warnings() const { return m_warnings; }

private:
    void updateReplyHasStarted();

    ConversationListModel m_conversations;
    MessageListModel m_messages{&m_conversations};
    std::unique_ptr<QQuickView> m_view;
    QString m_warnings;
};

ChatMessage question(const QString &text);
ChatMessage reply(const QString &text);

/// Every item below `item`, itself included, that inherits `typeName`.
QList<QQuickItem *> itemsOfType(QQuickItem *item, const char *typeName);
/// The first item below `item` whose text is `text`; null when there is none.
QQuickItem *itemWithText(QQuickItem *item, const QString &text);
