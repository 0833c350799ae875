#include "ReplyTask.h"

#include "ContentView.h"

using namespace Qt::StringLiterals;

ReplyTask::ReplyTask(ContentView *contentView, const QUuid &assistantMessageID,
                     const QUuid &conversationID, QObject *parent)
    : QObject(parent)
    , m_contentView(contentView)
    , m_assistantMessageID(assistantMessageID)
    , m_conversationID(conversationID)
{ }

void ReplyTask::appendLines(const QStringList &lines)
{
    for (const QString &line : lines) {
        if (line.isEmpty())
            continue;
        if (!m_assistantMessageCreated) {
            m_contentView->appendMessage({.id = m_assistantMessageID,
                                          .text = {},
                                          .isUser = false,
                                          .attachmentName = {},
                                          .imagePreviewData = {}});
            m_assistantMessageCreated = true;
        }
        m_contentView->appendChunk(line + u'\n', m_assistantMessageID, m_conversationID);
    }
}

void ReplyTask::saveAsShown()
{
    if (m_assistantMessageCreated && !m_hasEnded)
        m_contentView->saveHistory();
}

void ReplyTask::finish()
{
    m_hasEnded = true;
    m_contentView->trimMessage(m_assistantMessageID, m_conversationID);
    m_contentView->setLoading(false);
    m_contentView->saveHistory();
}

void ReplyTask::fail(const QString &description)
{
    m_hasEnded = true;
    m_contentView->appendAssistantNotice(u"No pude completar la respuesta de Aulora IA.\n\n"_s
                                         + description);
}
