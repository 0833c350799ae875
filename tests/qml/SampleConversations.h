#pragma once

#include "ConversationListModel.h"

/// A list of conversations that a QML test fills as it likes.
class SampleConversations : public ConversationListModel
{
    Q_OBJECT

public:
    using ConversationListModel::ConversationListModel;

    /// Puts a conversation of `messageCount` empty messages at the front.
    Q_INVOKABLE void add(const QString &title, int messageCount)
    {
        prepend({QUuid::createUuid(), title, QList<ChatMessage>(messageCount)});
    }
    Q_INVOKABLE void selectRow(int row) { select(conversations().at(row).id); }
    Q_INVOKABLE QUuid idOfRow(int row) const { return conversations().at(row).id; }
    Q_INVOKABLE void rename(int row, const QString &title) { setTitle(row, title); }
    Q_INVOKABLE void addMessage(int row) { appendMessage(row, ChatMessage()); }
};
