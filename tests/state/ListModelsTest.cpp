#include "ConversationListModel.h"
#include "MessageListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

ChatMessage message(const QString &text)
{
    return {.id = QUuid::createUuid(),
            .text = text,
            .isUser = true,
            .attachmentName = std::nullopt,
            .imagePreviewData = std::nullopt};
}

Conversation conversation(const QString &title, const QList<ChatMessage> &messages = {})
{
    return {.id = QUuid::createUuid(), .title = title, .messages = messages};
}

/// Both models, each under a tester that fails the test at any breach of the model contract.
struct Models
{
    ConversationListModel conversations;
    MessageListModel messages{&conversations};
    QAbstractItemModelTester conversationsTester{
        &conversations, QAbstractItemModelTester::FailureReportingMode::QtTest};
    QAbstractItemModelTester messagesTester{&messages,
                                            QAbstractItemModelTester::FailureReportingMode::QtTest};
    QSignalSpy conversationData{&conversations, &QAbstractItemModel::dataChanged};
    QSignalSpy messageData{&messages, &QAbstractItemModel::dataChanged};
    QSignalSpy messageRows{&messages, &QAbstractItemModel::rowsInserted};
    QSignalSpy messageResets{&messages, &QAbstractItemModel::modelReset};
    QSignalSpy messagesChanged{&messages, &MessageListModel::changed};

    Models()
    {
        conversations.replaceAll({conversation(u"Uno"_s, {message(u"a"_s), message(u"b"_s)}),
                                  conversation(u"Dos"_s), conversation(u"Tres"_s)});
        conversations.select(conversations.conversations().at(0).id);
        forget();
    }
    void forget()
    {
        for (QSignalSpy *spy :
             {&conversationData, &messageData, &messageRows, &messageResets, &messagesChanged})
            spy->clear();
    }
};

QList<int> rowAndRoles(const QSignalSpy &spy, qsizetype signal)
{
    const QList<QVariant> &arguments = spy.at(signal);
    return QList{arguments.at(0).toModelIndex().row()} + arguments.at(2).value<QList<int>>();
}

} // namespace

class ListModelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void piecesOfOneFrameAreToldTogether()
    {
        Models models;
        constexpr int pieces = 100;
        for (int i = 0; i < pieces; ++i)
            models.conversations.appendMessageText(0, 1, u"x"_s);
        // The first at once; the others wait for the frame to end, but no observer misses one.
        QCOMPARE(models.messageData.size(), 1);
        QCOMPARE(models.messagesChanged.size(), pieces);
        QTRY_COMPARE(models.messageData.size(), 2);
        QCOMPARE(rowAndRoles(models.messageData, 1),
                 (QList<int>{1, MessageListModel::AppendedTextRole}));
    }

    void viewsAreToldWhatWasAdded()
    {
        Models models;
        QStringList told;
        connect(
            &models.messages, &QAbstractItemModel::dataChanged, this, [&](const QModelIndex &row) {
                told += models.messages.data(row, MessageListModel::AppendedTextRole).toString();
            });
        for (const QString &piece : {u"x"_s, u"y"_s, u"z"_s})
            models.conversations.appendMessageText(0, 1, piece);
        QTRY_COMPARE(told, (QStringList{u"x"_s, u"yz"_s}));
        // A view that is made now takes the text and nothing more.
        QCOMPARE(models.messages.data(models.messages.index(1), MessageListModel::AppendedTextRole),
                 u""_s);
    }

    void anotherTextIsToldWhole()
    {
        Models models;
        models.conversations.appendMessageText(0, 1, u"x"_s);
        models.conversations.appendMessageText(0, 1, u"\n"_s);
        models.conversations.setMessageText(0, 1, u"bx"_s);
        QCOMPARE(rowAndRoles(models.messageData, models.messageData.size() - 1),
                 (QList<int>{1, MessageListModel::MessageTextRole}));
        QCOMPARE(models.messages.data(models.messages.index(1), MessageListModel::MessageTextRole),
                 u"bx"_s);
    }

    void textOfAnotherMessageIsToldBeforeItsOwnTime()
    {
        Models models;
        models.conversations.appendMessageText(0, 0, u"x"_s);
        models.conversations.appendMessageText(0, 0, u"y"_s);
        models.conversations.appendMessageText(0, 1, u"z"_s);
        QCOMPARE(models.messageData.size(), 2);
        QCOMPARE(rowAndRoles(models.messageData, 1).first(), 0);
        QTRY_COMPARE(models.messageData.size(), 3);
        QCOMPARE(rowAndRoles(models.messageData, 2).first(), 1);
    }

    void aPendingTextChangeIsDroppedWithItsConversation()
    {
        Models models;
        models.conversations.appendMessageText(0, 1, u"x"_s);
        models.conversations.appendMessageText(0, 1, u"y"_s);
        models.conversations.select(models.conversations.conversations().at(1).id);
        models.conversations.select(models.conversations.conversations().at(0).id);
        models.conversations.appendMessageText(0, 0, u"z"_s);
        QTRY_COMPARE(models.messageData.size(), 2);
        QCOMPARE(rowAndRoles(models.messageData, 1).first(), 0);
    }

    void streamedTextChangesOneRoleOfOneRow()
    {
        Models models;
        models.conversations.appendMessageText(0, 1, u" más"_s);
        QCOMPARE(models.messageData.count(), 1);
        QCOMPARE(rowAndRoles(models.messageData, 0),
                 (QList<int>{1, MessageListModel::AppendedTextRole}));
        QCOMPARE(models.messages.data(models.messages.index(1), MessageListModel::MessageTextRole),
                 u"b más"_s);
        QCOMPARE(models.messagesChanged.count(), 1);
        QCOMPARE(models.messageResets.count(), 0);
        QCOMPARE(models.conversationData.count(), 0);
    }

    void anUnchangedTextEmitsNothing()
    {
        Models models;
        models.conversations.appendMessageText(0, 1, u""_s);
        models.conversations.setMessageText(0, 1, u"b"_s);
        QCOMPARE(models.messagesChanged.count(), 0);
    }

    void appendedMessageIsOneRowAndOneCount()
    {
        Models models;
        models.conversations.appendMessage(0, message(u"c"_s));
        QCOMPARE(models.messageRows.count(), 1);
        QCOMPARE(models.messageRows.at(0).at(1).toInt(), 2);
        QCOMPARE(models.messages.count(), 3);
        QCOMPARE(models.messagesChanged.count(), 1);
        QCOMPARE(models.conversationData.count(), 1);
        QCOMPARE(rowAndRoles(models.conversationData, 0),
                 (QList<int>{0, ConversationListModel::MessageCountRole}));
    }

    void otherConversationsDoNotDisturbTheShownOne()
    {
        Models models;
        models.conversations.appendMessage(1, message(u"c"_s));
        models.conversations.appendMessageText(1, 0, u"d"_s);
        models.conversations.setTitle(1, u"Cambiado"_s);
        models.conversations.prepend(conversation(u"Cero"_s));
        QCOMPARE(models.messages.count(), 2);
        QCOMPARE(models.messagesChanged.count(), 0);
        QCOMPARE(models.messageRows.count(), 0);
        QCOMPARE(models.messageResets.count(), 0);
        // The shown conversation moved down by one and is still the one that grows.
        models.conversations.appendMessageText(1, 0, u"!"_s);
        QCOMPARE(models.messages.messages().at(0).text, u"a!"_s);
    }

    void selectionTellsTheTwoRowsItTouches()
    {
        Models models;
        models.conversations.select(models.conversations.conversations().at(2).id);
        QCOMPARE(models.conversationData.count(), 2);
        QCOMPARE(rowAndRoles(models.conversationData, 0),
                 (QList<int>{0, ConversationListModel::SelectedRole}));
        QCOMPARE(rowAndRoles(models.conversationData, 1),
                 (QList<int>{2, ConversationListModel::SelectedRole}));
        QCOMPARE(models.messages.count(), 0);
        QCOMPARE(models.messagesChanged.count(), 1);
    }

    void switchingBetweenEqualListsIsNoChange()
    {
        Models models;
        models.conversations.select(models.conversations.conversations().at(1).id);
        models.forget();
        models.conversations.select(models.conversations.conversations().at(2).id);
        QCOMPARE(models.messagesChanged.count(), 0);
    }

    void replacingEverythingEmptiesTheShownList()
    {
        Models models;
        models.conversations.replaceAll({conversation(u"Otra"_s)});
        QCOMPARE(models.messages.count(), 0);
        QCOMPARE(models.messageResets.count(), 1);
        QCOMPARE(models.messagesChanged.count(), 1);
    }

    void showsTheFirstOfConversationsWithOneID()
    {
        Models models;
        Conversation twin = conversation(u"Gemela"_s, {message(u"otra"_s)});
        twin.id = models.conversations.conversations().at(0).id;
        QList<Conversation> all = models.conversations.conversations();
        all.append(twin);
        models.conversations.replaceAll(all);
        QCOMPARE(models.messages.messages().at(0).text, u"a"_s);
    }

    void rolesYieldTheFieldsOfARecord()
    {
        Models models;
        ChatMessage withImage = message(u"mirá"_s);
        withImage.attachmentName = u""_s;
        withImage.imagePreviewData = QByteArray("jpeg");
        models.conversations.appendMessage(0, withImage);
        const QModelIndex row = models.messages.index(2);
        QCOMPARE(models.messages.data(row, MessageListModel::MessageIDRole).toUuid(), withImage.id);
        QVERIFY(models.messages.data(row, MessageListModel::IsUserRole).toBool());
        QVERIFY(models.messages.data(row, MessageListModel::HasAttachmentNameRole).toBool());
        QCOMPARE(models.messages.data(row, MessageListModel::ImagePreviewDataRole).toByteArray(),
                 QByteArray("jpeg"));
        const QModelIndex plain = models.messages.index(0);
        QVERIFY(!models.messages.data(plain, MessageListModel::HasAttachmentNameRole).toBool());

        const QModelIndex first = models.conversations.index(0);
        QCOMPARE(models.conversations.data(first, ConversationListModel::TitleRole), u"Uno"_s);
        QCOMPARE(models.conversations.data(first, ConversationListModel::MessageCountRole), 3);
        QCOMPARE(models.conversations.data(first, ConversationListModel::SelectedRole), true);
    }
};

QTEST_GUILESS_MAIN(ListModelsTest)
#include "ListModelsTest.moc"
