#pragma once

#include "TrackedItem.h"

/// What a list shows of one message.
class MessageDelegate : public TrackedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString messageText READ messageText WRITE setMessageText NOTIFY messageTextChanged
                   REQUIRED)
    Q_PROPERTY(QString appendedText READ appendedText WRITE setAppendedText NOTIFY
                   appendedTextChanged REQUIRED)

public:
    using TrackedItem::TrackedItem;

    /// The whole message; `messageTextChanged` tells of another one, not of what was appended. It
    /// is here and not in QML, where a reply would be copied with every line.
    QString messageText() const { return m_messageText; }
    void setMessageText(const QString &text);
    /// What was added to the message last.
    QString appendedText() const { return m_appendedText; }
    void setAppendedText(const QString &piece);

Q_SIGNALS:
    void messageTextChanged();
    void appendedTextChanged();

private:
    QString m_messageText;
    QString m_appendedText;
};
