#pragma once

#include "ChatMessage.h"

#include <QAbstractListModel>
#include <QBasicTimer>
#include <QList>
#include <QtQml/qqmlregistration.h>

class ConversationListModel;

/// The messages of the selected conversation, oldest first; empty when nothing is selected or no
/// conversation has the selected id.
///
/// A text that grows is announced as what was added to it, so that a piece costs the same however
/// long the text is: once a view shares the whole text, the next piece has to copy all of it.
/// Pieces that arrive within one frame are announced together. `changed` is emitted for every
/// piece.
class MessageListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("ContentView owns the messages")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        MessageIDRole = Qt::UserRole, ///< QUuid
        MessageTextRole, ///< QString, verbatim
        /// QString; empty but while `dataChanged` tells of it: what was added to the text.
        AppendedTextRole,
        IsUserRole, ///< bool
        HasAttachmentNameRole, ///< bool: an empty name is a name
        AttachmentNameRole, ///< QString
        ImagePreviewDataRole, ///< QByteArray; empty when there is no preview
    };

    /// `conversations` is borrowed and outlives this object.
    explicit MessageListModel(ConversationListModel *conversations, QObject *parent = nullptr);

    const QList<ChatMessage> &messages() const;
    int count() const { return int(messages().size()); }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    /// The list differs from what it was, compared field by field: a message more, other messages,
    /// or a text that grew. Switching between two equal lists is no change.
    void changed();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void messageTextAppended(int row, const QString &piece);
    void messageTextReplaced(int row);
    void tellAppendedText();

    /// Index of the selected conversation; -1 when there is none.
    int indexOfSelected() const;
    void tellDifference(const QList<ChatMessage> &previous);

    ConversationListModel *m_conversations;
    /// Index of the conversation shown; -1 for none. Its messages are read where they are: a copy
    /// here would make every streamed piece copy the list first.
    int m_shown = -1;
    QList<ChatMessage> m_beforeReset;
    /// Row of a text that grew since views were last told of it; -1 for none.
    int m_untoldTextRow = -1;
    QString m_untoldText;
    /// What views are being told of `m_toldTextRow`; -1 for none.
    int m_toldTextRow = -1;
    QString m_toldText;
    /// Runs for a frame from when views were told.
    QBasicTimer m_textTimer;
};
