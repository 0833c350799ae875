#include "ConversationListModel.h"

#include <algorithm>
#include <utility>

namespace {

template <typename Record>
int indexOfID(const QList<Record> &records, const QUuid &id)
{
    const auto found = std::find_if(records.cbegin(), records.cend(),
                                    [&id](const Record &record) { return record.id == id; });
    return found == records.cend() ? -1 : int(found - records.cbegin());
}

} // namespace

ConversationListModel::ConversationListModel(QObject *parent)
    : QAbstractListModel(parent)
{ }

int ConversationListModel::count() const
{
    return int(m_conversations.size());
}

int ConversationListModel::indexOf(const QUuid &id) const
{
    return indexOfID(m_conversations, id);
}

int ConversationListModel::indexOfMessage(int index, const QUuid &messageID) const
{
    return indexOfID(m_conversations.at(index).messages, messageID);
}

void ConversationListModel::replaceAll(QList<Conversation> conversations)
{
    const bool countDiffers = conversations.size() != m_conversations.size();
    beginResetModel();
    m_conversations = std::move(conversations);
    endResetModel();
    if (countDiffers)
        Q_EMIT countChanged();
}

void ConversationListModel::prepend(Conversation conversation)
{
    beginInsertRows({}, 0, 0);
    m_conversations.prepend(std::move(conversation));
    endInsertRows();
    Q_EMIT countChanged();
}

void ConversationListModel::select(const QUuid &id)
{
    if (m_selectedID == id)
        return;
    const std::optional<QUuid> previousID = std::exchange(m_selectedID, id);
    for (int row = 0; row < count(); ++row) {
        const QUuid &rowID = m_conversations.at(row).id;
        if (rowID == previousID || rowID == id)
            tellRowChanged(row, {SelectedRole});
    }
    Q_EMIT selectedIDChanged();
}

void ConversationListModel::setTitle(int index, const QString &title)
{
    m_conversations[index].title = title;
    tellRowChanged(index, {TitleRole});
}

void ConversationListModel::appendMessage(int index, const ChatMessage &message)
{
    Q_EMIT messageAboutToBeAppended(index);
    m_conversations[index].messages.append(message);
    Q_EMIT messageAppended(index);
    tellRowChanged(index, {MessageCountRole});
}

void ConversationListModel::appendMessageText(int index, int messageIndex, const QString &piece)
{
    if (piece.isEmpty())
        return;
    m_conversations[index].messages[messageIndex].text += piece;
    Q_EMIT messageTextAppended(index, messageIndex, piece);
}

void ConversationListModel::setMessageText(int index, int messageIndex, const QString &text)
{
    QString &current = m_conversations[index].messages[messageIndex].text;
    if (current == text)
        return;
    current = text;
    Q_EMIT messageTextReplaced(index, messageIndex);
}

int ConversationListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ConversationListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Conversation &conversation = m_conversations.at(index.row());
    switch (role) {
    case ConversationIDRole:
        return conversation.id;
    case TitleRole:
        return conversation.title;
    case MessageCountRole:
        return int(conversation.messages.size());
    case SelectedRole:
        return conversation.id == m_selectedID;
    default:
        return {};
    }
}

QHash<int, QByteArray> ConversationListModel::roleNames() const
{
    return {{ConversationIDRole, "conversationID"},
            {TitleRole, "title"},
            {MessageCountRole, "messageCount"},
            {SelectedRole, "selected"}};
}

void ConversationListModel::tellRowChanged(int row, const QList<int> &roles)
{
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, roles);
}
