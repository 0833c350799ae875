#include "ReplyTask.h"

#include "TestChat.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A chat in which a question has been asked and a reply is awaited, without any network.
struct AwaitedReply
{
    TestChat chat{AssistantService()};
    QUuid conversationID = *chat.view.selectedConversationID();
    QUuid messageID = QUuid::createUuid();
    ReplyTask task{&chat.view, messageID, conversationID};
    QSignalSpy saves{&chat.store, &PreferenceStore::changed};

    AwaitedReply()
    {
        chat.view.appendMessage({.id = QUuid::createUuid(),
                                 .text = u"pregunta"_s,
                                 .isUser = true,
                                 .attachmentName = {},
                                 .imagePreviewData = {}});
        chat.view.setLoading(true);
        saves.clear();
    }

    const Conversation &asked()
    {
        return chat.conversations().at(chat.view.conversations()->indexOf(conversationID));
    }

    /// Leaves the conversation for a new one, which then comes first.
    const Conversation &leave()
    {
        chat.view.startNewConversation();
        saves.clear();
        return chat.conversations().constFirst();
    }
};

} // namespace

class ReplyTaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesTheMessageAtTheFirstLineThatIsNotEmpty()
    {
        AwaitedReply reply;
        reply.task.appendLines({});
        reply.task.appendLines({u""_s, u""_s});
        QCOMPARE(reply.asked().messages.size(), 1);
        QCOMPARE(reply.saves.count(), 0);
        QVERIFY(!reply.chat.view.replyHasStarted());

        reply.task.appendLines({u""_s, u" "_s});
        QCOMPARE(reply.asked().messages.size(), 2);
        const ChatMessage expected{.id = reply.messageID,
                                   .text = u" \n"_s,
                                   .isUser = false,
                                   .attachmentName = {},
                                   .imagePreviewData = {}};
        QCOMPARE(reply.asked().messages.constLast(), expected);
        QVERIFY(reply.chat.view.replyHasStarted());
        QVERIFY(reply.chat.view.isLoading());
    }

    void savesTheEmptyMessageAndNoLine()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"uno"_s});
        QCOMPARE(reply.saves.count(), 1);
        QCOMPARE(reply.chat.stored().constFirst().messages.constLast().id, reply.messageID);
        for (int i = 0; i < 1000; ++i)
            reply.task.appendLines({u"otra"_s, u"más"_s});
        QCOMPARE(reply.saves.count(), 1);
        reply.task.finish();
        QCOMPARE(reply.saves.count(), 2);
        QCOMPARE(reply.chat.stored(), reply.chat.conversations());
    }

    void takesLinesAsTheyAre()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"data: a "_s, u""_s, u"  {\"b\":1}"_s, u"\t"_s});
        QCOMPARE(reply.asked().messages.constLast().text, u"data: a \n  {\"b\":1}\n\t\n"_s);
    }

    void tellsEachLineOfAChunk()
    {
        AwaitedReply reply;
        const QSignalSpy changes(reply.chat.view.conversations(),
                                 &ConversationListModel::messageTextAppended);
        reply.task.appendLines({u"uno"_s, u""_s, u"dos"_s, u"tres"_s});
        QCOMPARE(changes.count(), 3);
    }

    void trimsAtTheEnd()
    {
        AwaitedReply reply;
        reply.task.appendLines({u" uno"_s, u"dos "_s, u"  "_s});
        reply.task.finish();
        QCOMPARE(reply.asked().messages.constLast().text, u"uno\ndos"_s);
        QVERIFY(!reply.chat.view.isLoading());
    }

    void isTrimmedThenDoneThenSaved()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"uno"_s});
        reply.saves.clear();
        QString textWhenDone;
        qsizetype savesWhenDone = -1;
        connect(&reply.chat.view, &ContentView::isLoadingChanged, this, [&] {
            textWhenDone = reply.asked().messages.constLast().text;
            savesWhenDone = reply.saves.count();
        });
        reply.task.finish();
        QCOMPARE(textWhenDone, u"uno"_s);
        QCOMPARE(savesWhenDone, 0);
        QCOMPARE(reply.saves.count(), 1);
    }

    void endsWithoutAMessageWhenNothingCame()
    {
        AwaitedReply reply;
        reply.task.appendLines({u""_s, u""_s});
        reply.task.finish();
        QCOMPARE(reply.asked().messages.size(), 1);
        QVERIFY(!reply.chat.view.isLoading());
        QCOMPARE(reply.saves.count(), 1);
        QCOMPARE(reply.chat.stored(), reply.chat.conversations());
    }

    void failsAfterWhatHasArrived()
    {
        AwaitedReply reply;
        reply.task.appendLines({u" uno "_s, u"dos"_s});
        reply.saves.clear();
        reply.task.fail(u"Se cortó."_s);
        QCOMPARE(reply.saves.count(), 1);
        const QList<ChatMessage> &messages = reply.asked().messages;
        QCOMPARE(messages.size(), 3);
        QCOMPARE(messages.at(1).text, u" uno \ndos\n"_s);
        QCOMPARE(messages.at(2).text,
                 u"No pude completar la respuesta de Aulora IA.\n\nSe cortó."_s);
        QVERIFY(!messages.at(2).isUser);
        QVERIFY(messages.at(2).id != reply.messageID);
        QVERIFY(!messages.at(2).attachmentName && !messages.at(2).imagePreviewData);
        QVERIFY(!reply.chat.view.isLoading());
        QCOMPARE(reply.chat.stored(), reply.chat.conversations());
    }

    void failsBeforeAnythingArrived()
    {
        AwaitedReply reply;
        reply.task.fail(u"Error del servidor (404)."_s);
        QCOMPARE(reply.asked().messages.size(), 2);
        QCOMPARE(reply.asked().messages.constLast().text,
                 u"No pude completar la respuesta de Aulora IA.\n\nError del servidor (404)."_s);
    }

    void losesTheTextWhenTheUserLeftBeforeTheFirstLine()
    {
        AwaitedReply reply;
        reply.leave();
        reply.task.appendLines({u"uno"_s, u"dos"_s});
        reply.task.finish();
        QCOMPARE(reply.asked().messages.size(), 1);
        const Conversation &other = reply.chat.conversations().constFirst();
        QCOMPARE(other.messages.size(), 1);
        QCOMPARE(other.messages.constFirst().id, reply.messageID);
        QCOMPARE(other.messages.constFirst().text, u""_s);
        QVERIFY(!other.messages.constFirst().isUser);
        QVERIFY(!reply.chat.view.isLoading());
        QCOMPARE(reply.chat.stored(), reply.chat.conversations());
    }

    void keepsFillingItsConversationWhenTheUserLeftLater()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"uno"_s});
        reply.leave();
        reply.task.appendLines({u"dos"_s});
        QCOMPARE(reply.saves.count(), 0);
        reply.task.finish();
        QCOMPARE(reply.asked().messages.constLast().text, u"uno\ndos"_s);
        QVERIFY(reply.chat.conversations().constFirst().messages.isEmpty());
        QCOMPARE(reply.chat.stored(), reply.chat.conversations());
    }

    void failsWhereTheUserIs()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"uno"_s});
        reply.leave();
        reply.task.fail(u"Se cortó."_s);
        QCOMPARE(reply.asked().messages.constLast().text, u"uno\n"_s);
        const Conversation &other = reply.chat.conversations().constFirst();
        QCOMPARE(other.messages.size(), 1);
        QVERIFY(other.messages.constFirst().text.endsWith(u"Se cortó."_s));
    }

    void isDroppedWhenTheHistoryWasCleared()
    {
        AwaitedReply reply;
        reply.task.appendLines({u"uno"_s});
        reply.chat.view.clearHistory();
        const QList<Conversation> cleared = reply.chat.conversations();
        reply.task.appendLines({u"dos"_s});
        reply.task.finish();
        QCOMPARE(reply.chat.conversations(), cleared);
        QVERIFY(!reply.chat.view.isLoading());
    }
};

QTEST_GUILESS_MAIN(ReplyTaskTest)
#include "ReplyTaskTest.moc"
