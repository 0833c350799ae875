#include "MessageDelegate.h"

void MessageDelegate::setMessageText(const QString &text)
{
    if (m_messageText == text)
        return;
    m_messageText = text;
    Q_EMIT messageTextChanged();
}

void MessageDelegate::setAppendedText(const QString &piece)
{
    m_messageText += piece;
    m_appendedText = piece;
    Q_EMIT appendedTextChanged();
}
