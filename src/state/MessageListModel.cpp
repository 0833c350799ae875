#include "MessageListModel.h"

#include "ConversationListModel.h"

#include <QTimerEvent>

#include <utility>

MessageListModel::MessageListModel(ConversationListModel *conversations, QObject *parent)
    : QAbstractListModel(parent)
    , m_conversations(conversations)
{
    using Conversations = ConversationListModel;

    connect(conversations, &Conversations::selectedIDChanged, this, [this] {
        const QList<ChatMessage> previous = messages();
        beginResetModel();
        m_shown = indexOfSelected();
        endResetModel();
        tellDifference(previous);
    });
    connect(conversations, &Conversations::modelAboutToBeReset, this, [this] {
        m_beforeReset = messages();
        beginResetModel();
        m_shown = -1;
    });
    connect(conversations, &Conversations::modelReset, this, [this] {
        m_shown = indexOfSelected();
        endResetModel();
        tellDifference(std::exchange(m_beforeReset, {}));
    });
    connect(conversations, &Conversations::rowsInserted, this,
            [this] { m_shown = indexOfSelected(); });
    connect(conversations, &Conversations::messageAboutToBeAppended, this, [this](int index) {
        if (index == m_shown)
            beginInsertRows({}, count(), count());
    });
    connect(conversations, &Conversations::messageAppended, this, [this](int index) {
        if (index != m_shown)
            return;
        endInsertRows();
        Q_EMIT countChanged();
        Q_EMIT changed();
    });
    connect(conversations, &Conversations::messageTextAppended, this,
            [this](int index, int messageIndex, const QString &piece) {
                if (index == m_shown)
                    this->messageTextAppended(messageIndex, piece);
            });
    connect(conversations, &Conversations::messageTextReplaced, this,
            [this](int index, int messageIndex) {
                if (index == m_shown)
                    this->messageTextReplaced(messageIndex);
            });
    // Text that is not announced yet belongs to the rows before the reset.
    connect(this, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        m_untoldTextRow = -1;
        m_untoldText.clear();
    });
}

void MessageListModel::messageTextAppended(int row, const QString &piece)
{
    constexpr int frameTime = 16; // ms

    if (m_untoldTextRow != row)
        tellAppendedText();
    m_untoldTextRow = row;
    m_untoldText += piece;
    if (!m_textTimer.isActive()) {
        tellAppendedText();
        m_textTimer.start(frameTime, Qt::PreciseTimer, this);
    }
    Q_EMIT changed();
}

void MessageListModel::messageTextReplaced(int row)
{
    tellAppendedText();
    Q_EMIT dataChanged(index(row), index(row), {MessageTextRole});
    Q_EMIT changed();
}

void MessageListModel::tellAppendedText()
{
    const int row = std::exchange(m_untoldTextRow, -1);
    if (row < 0)
        return;
    m_toldTextRow = row;
    m_toldText = std::exchange(m_untoldText, {});
    Q_EMIT dataChanged(index(row), index(row), {AppendedTextRole});
    m_toldTextRow = -1;
    m_toldText.clear();
}

void MessageListModel::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_textTimer.timerId())
        return QAbstractListModel::timerEvent(event);
    if (m_untoldTextRow < 0)
        m_textTimer.stop();
    tellAppendedText();
}

const QList<ChatMessage> &MessageListModel::messages() const
{
    static const QList<ChatMessage> none;
    return m_shown < 0 ? none : m_conversations->conversations().at(m_shown).messages;
}

int MessageListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant MessageListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ChatMessage &message = messages().at(index.row());
    switch (role) {
    case MessageIDRole:
        return message.id;
    case MessageTextRole:
        return message.text;
    case AppendedTextRole:
        return index.row() == m_toldTextRow ? m_toldText : QString();
    case IsUserRole:
        return message.isUser;
    case HasAttachmentNameRole:
        return message.attachmentName.has_value();
    case AttachmentNameRole:
        return message.attachmentName.value_or(QString());
    case ImagePreviewDataRole:
        // Empty but not null: QML could not ask a null one for its byteLength.
        return message.imagePreviewData.value_or(QByteArray(""));
    default:
        return {};
    }
}

QHash<int, QByteArray> MessageListModel::roleNames() const
{
    return {{MessageIDRole, "messageID"},
            {MessageTextRole, "messageText"},
            {AppendedTextRole, "appendedText"},
            {IsUserRole, "isUser"},
            {HasAttachmentNameRole, "hasAttachmentName"},
            {AttachmentNameRole, "attachmentName"},
            {ImagePreviewDataRole, "imagePreviewData"}};
}

int MessageListModel::indexOfSelected() const
{
    const std::optional<QUuid> id = m_conversations->selectedID();
    return id ? m_conversations->indexOf(*id) : -1;
}

void MessageListModel::tellDifference(const QList<ChatMessage> &previous)
{
    if (previous.size() != messages().size())
        Q_EMIT countChanged();
    if (previous != messages())
        Q_EMIT changed();
}
