#include "MessageDelegate.h"

void MessageDelegate::setMessageText(const QString &text)
{
    if (m_messageText == text)
        return;
    m_messageText = text;
    Q_EMIT messageTextChanged();
}
