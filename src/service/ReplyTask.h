#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

class ContentView;

/// One reply on its way into the chat. Its text goes to the conversation and message named when
/// the question was sent, wherever the user has gone since.
class ReplyTask : public QObject
{
    Q_OBJECT

public:
    /// `contentView` is borrowed and outlives this object.
    ReplyTask(ContentView *contentView, const QUuid &assistantMessageID,
              const QUuid &conversationID, QObject *parent = nullptr);

    /// Adds `lines` to the assistant's message, each with a line feed; empty ones are left out.
    /// The message itself is appended before the first of them, to the conversation that is
    /// selected by then.
    void appendLines(const QStringList &lines);
    /// The reply is complete: trims it and saves the history.
    void finish();
    /// The reply ends here: tells so in a message after what has arrived, which stays as it is.
    void fail(const QString &description);
    /// Saves the history with as much of the reply as has arrived; does nothing before its first
    /// line and after its end.
    void saveAsShown();

private:
    ContentView *m_contentView;
    QUuid m_assistantMessageID;
    QUuid m_conversationID;
    bool m_assistantMessageCreated = false;
    bool m_hasEnded = false;
};
