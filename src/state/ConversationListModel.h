// The state of the main screen: ContentView, which alone changes it, and the list models through
// which views see it change.
#pragma once

#include "Conversation.h"

#include <QAbstractListModel>
#include <QList>
#include <QUuid>
#include <QtQml/qqmlregistration.h>

#include <optional>

/// All conversations, newest first, and which one is selected. Only ContentView changes it; every
/// change is told exactly, so that a view redraws only what changed.
class ConversationListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("ContentView owns the conversations")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        ConversationIDRole = Qt::UserRole, ///< QUuid
        TitleRole, ///< QString, verbatim
        MessageCountRole, ///< int
        SelectedRole, ///< bool
    };

    explicit ConversationListModel(QObject *parent = nullptr);

    const QList<Conversation> &conversations() const { return m_conversations; }
    std::optional<QUuid> selectedID() const { return m_selectedID; }
    int count() const;

    /// Index of the first conversation with `id`; -1 when there is none.
    int indexOf(const QUuid &id) const;
    /// Index of the first message with `messageID` in conversation `index`; -1 when there is none.
    int indexOfMessage(int index, const QUuid &messageID) const;

    void replaceAll(QList<Conversation> conversations);
    void prepend(Conversation conversation);
    /// Selects `id`, which need not exist.
    void select(const QUuid &id);
    void setTitle(int index, const QString &title);
    void appendMessage(int index, const ChatMessage &message);
    void appendMessageText(int index, int messageIndex, const QString &piece);
    void setMessageText(int index, int messageIndex, const QString &text);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    void selectedIDChanged();
    /// A message is about to be appended to, or has been appended to, conversation `index`.
    void messageAboutToBeAppended(int index);
    void messageAppended(int index);
    /// `piece` is now at the end of the message's text.
    void messageTextAppended(int index, int messageIndex, const QString &piece);
    /// The message has another text.
    void messageTextReplaced(int index, int messageIndex);

private:
    void tellRowChanged(int row, const QList<int> &roles);

    QList<Conversation> m_conversations;
    std::optional<QUuid> m_selectedID;
};
