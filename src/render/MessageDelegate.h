#pragma once

#include "TrackedItem.h"

/// What a list shows of one message.
class MessageDelegate : public TrackedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString messageText READ messageText WRITE setMessageText NOTIFY messageTextChanged
                   REQUIRED)

public:
    using TrackedItem::TrackedItem;

    /// The message itself. It is here and not in QML, where a reply would be copied with every
    /// line.
    QString messageText() const { return m_messageText; }
    void setMessageText(const QString &text);

Q_SIGNALS:
    void messageTextChanged();

private:
    QString m_messageText;
};
