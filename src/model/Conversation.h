#pragma once

#include "ChatMessage.h"

#include <QList>

/// One chat thread. `messages` is ordered oldest first.
struct Conversation
{
    QUuid id;
    QString title;
    QList<ChatMessage> messages;

    bool operator==(const Conversation &) const = default;
};

// As for ChatMessage.
Q_DECLARE_TYPEINFO(Conversation, Q_RELOCATABLE_TYPE);

/// The title of a conversation nobody has written in yet. A conversation that carries it takes
/// its title from its next question, and an empty one is reused rather than doubled.
inline const QString defaultConversationTitle = QStringLiteral("Nueva conversación");
