#include "ChatRequestBody.h"
#include "ScriptedServer.h"
#include "TestChat.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include <optional>
#include <semaphore>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString imagePrompt
    = u"Analizá esta imagen con finalidad educativa médica. Describí los hallazgos relevantes y explicalos de forma didáctica."_s;

/// Lets a script continue when the test says so, or when the test has failed.
class Gate
{
public:
    void open() { m_semaphore.release(); }
    void wait() { (void)m_semaphore.try_acquire_for(10s); }

private:
    std::binary_semaphore m_semaphore{0};
};

const QByteArray replyHead = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
const QByteArray lastChunk = "0\r\n\r\n";

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

} // namespace

/// The send flow against a service that behaves.
class SendFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksTheServiceAsAgreed();
    void sendsNeitherCookieNorMemory();
    void sendsWhatTheComposerHolds_data();
    void sendsWhatTheComposerHolds();
    void readsTheIdentityForEachQuestion();
    void ignoresWhatCannotBeSent_data();
    void ignoresWhatCannotBeSent();
    void sendsOneQuestionAtATime();
    void beginsNoConversationWhileItWaits();
    void beginsAConversationWhenNoneIsSelected();
    void beginsNoneInPlaceOfOneThatIsGone();
    void sendsTheTextOfThePress_data();
    void sendsTheTextOfThePress();
    void sendsNoImageThatWasTakenAway();
    void showsAndSavesTheQuestionBeforeTheReply_data();
    void showsAndSavesTheQuestionBeforeTheReply();
    void savesTheTitleBeforeTheQuestion();
    void titlesAConversationOnce();
    void keepsNoPreviewWhenNoneCanBeMade();
    void saysWhenTheQuestionCannotBePrepared();
    void fillsTheReplyAsItComes();
    void followsTheConversationOfTheQuestion();
    void keepsWaitingWhileTheServiceTalks_data();
    void keepsWaitingWhileTheServiceTalks();
    void keepsWaitingWhileTheServiceListens();
    void waitsForNoServiceWhenItIsDestroyed_data();
    void waitsForNoServiceWhenItIsDestroyed();

private:
    AssistantService serviceAt(const ScriptedServer &server,
                               std::chrono::milliseconds idleTimeout = 20s) const;
    /// A server that answers each question with the line "respuesta".
    std::unique_ptr<ScriptedServer> answeringServer() const;
    static bool waitForTheEnd(TestChat &chat);
    /// Whether the next question of `chat` is the first that `server` hears of it.
    static bool hasSentNothing(TestChat &chat, const ScriptedServer &server);

    TestAuthority m_authority;
    ServerCredentials m_credentials = m_authority.issue("localhost");
};

AssistantService SendFlowTest::serviceAt(const ScriptedServer &server,
                                         std::chrono::milliseconds idleTimeout) const
{
    return {.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(server.port())),
            .extraTrustAnchors = m_authority.certificate(),
            .idleTimeout = idleTimeout};
}

std::unique_ptr<ScriptedServer> SendFlowTest::answeringServer() const
{
    return std::make_unique<ScriptedServer>(m_credentials, [](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send(
            "HTTP/1.1 200 OK\r\nSet-Cookie: a=b\r\nContent-Length: 10\r\n\r\nrespuesta\n");
        connection.waitUntilClientLeaves();
    });
}

bool SendFlowTest::waitForTheEnd(TestChat &chat)
{
    return QTest::qWaitFor([&chat] { return !chat.view.isLoading(); }, 30'000);
}

bool SendFlowTest::hasSentNothing(TestChat &chat, const ScriptedServer &server)
{
    // A question already being sent would arrive as well, since this runs the event loop.
    chat.view.setLoading(false);
    chat.view.clearSelectedImage();
    chat.send(u"otra pregunta"_s);
    return waitForTheEnd(chat) && server.connectionCount() == 1 && server.requests().size() == 1
        && server.requests().constFirst().body.contains("otra pregunta");
}

void SendFlowTest::asksTheServiceAsAgreed()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.send(u"  ¿Qué es?\n"_s);
    QVERIFY(waitForTheEnd(chat));

    QCOMPARE(server->requests().size(), 1);
    const RecordedRequest request = server->requests().constFirst();
    QVERIFY(request.head.endsWith("\r\n\r\n"));
    QList<QByteArray> lines = request.head.chopped(4).split('\n');
    QCOMPARE(lines.takeFirst(), "POST /api/chat HTTP/1.1\r"_ba);
    QHash<QByteArray, QByteArray> headers;
    for (const QByteArray &line : lines)
        headers.insert(line.left(line.indexOf(':')).toLower(),
                       line.mid(line.indexOf(':') + 1).trimmed());
    QCOMPARE(headers.size(), lines.size());
    QCOMPARE(headers.take("content-type"), "application/json"_ba);
    QCOMPARE(headers.take("content-length"), QByteArray::number(request.body.size()));
    QCOMPARE(headers.take("host"), "localhost:" + QByteArray::number(server->port()));
    QCOMPARE(headers.take("connection"), "close"_ba);
    QVERIFY2(headers.isEmpty(), headers.keys().join(' ').constData());

    const QByteArray userId = chat.identity.installationUserId().toUtf8();
    QCOMPARE(request.body, R"({"message":"¿Qué es?","userId":")" + userId + R"("})");
}

void SendFlowTest::sendsNeitherCookieNorMemory()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.send(u"una"_s);
    QVERIFY(waitForTheEnd(chat));
    chat.send(u"otra"_s);
    QVERIFY(waitForTheEnd(chat));

    QCOMPARE(server->requests().size(), 2);
    QCOMPARE(server->connectionCount(), 2);
    const RecordedRequest second = server->requests().constLast();
    QVERIFY(!second.head.toLower().contains("cookie"));
    QVERIFY(!second.body.contains("una"));
    QVERIFY(!second.body.contains("respuesta"));
    QCOMPARE(chat.messages().size(), 4);
}

void SendFlowTest::sendsWhatTheComposerHolds_data()
{
    using OptionalText = std::optional<QString>;
    QTest::addColumn<QString>("text");
    QTest::addColumn<OptionalText>("name");
    QTest::addColumn<OptionalText>("mimeType");
    QTest::addColumn<bool>("hasImage");
    QTest::addColumn<bool>("analysis");
    QTest::addColumn<QJsonObject>("expected");

    const OptionalText none;
    const OptionalText name = u"placa.png"_s;
    const OptionalText mimeType = u"image/png"_s;
    const QJsonObject image{{u"imageBase64"_s, u"YWJjZA=="_s},
                            {u"imageName"_s, u"placa.png"_s},
                            {u"imageMimeType"_s, u"image/png"_s}};
    const auto with = [](QJsonObject object, const QString &message) {
        object.insert(u"message"_s, message);
        return object;
    };

    QTest::newRow("a word") << u"  hola \n"_s << none << none << false << true
                            << with({}, u"hola"_s);
    QTest::newRow("a word and an image")
        << u"hola"_s << name << mimeType << true << true << with(image, u"hola"_s);
    QTest::newRow("an image") << u" "_s << name << mimeType << true << true
                              << with(image, imagePrompt);
    QTest::newRow("an image without name and type")
        << u""_s << none << none << true << true
        << QJsonObject{{u"message"_s, imagePrompt},
                       {u"imageBase64"_s, u"YWJjZA=="_s},
                       {u"imageName"_s, u"imagen"_s},
                       {u"imageMimeType"_s, u"image/jpeg"_s}};
    QTest::newRow("an image while analysis is off")
        << u"hola"_s << name << mimeType << true << false << with({}, u"hola"_s);
}

void SendFlowTest::sendsWhatTheComposerHolds()
{
    QFETCH(QString, text);
    QFETCH(std::optional<QString>, name);
    QFETCH(std::optional<QString>, mimeType);
    QFETCH(bool, hasImage);
    QFETCH(bool, analysis);
    QFETCH(QJsonObject, expected);

    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.view.setImageAnalysisEnabled(analysis);
    if (hasImage)
        chat.view.setSelectedImage("abcd", name, mimeType);
    chat.send(text);
    QVERIFY(waitForTheEnd(chat));

    expected.insert(u"userId"_s, chat.identity.installationUserId());
    QCOMPARE(server->requests().size(), 1);
    QCOMPARE(QJsonDocument::fromJson(server->requests().constFirst().body).object(), expected);
    const ChatMessage &question = chat.messages().constFirst();
    QCOMPARE(question.attachmentName, hasImage && analysis ? name : std::nullopt);
    QCOMPARE(question.imagePreviewData.has_value(), hasImage && analysis);
}

void SendFlowTest::readsTheIdentityForEachQuestion()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    for (const QString &userId : {u"aulora-1"_s, u"otra \"cosa\""_s, u"aulora-2"_s}) {
        chat.store.setString(InstallationIdentity::userIdKey, userId);
        chat.send(u"hola"_s);
        QVERIFY(waitForTheEnd(chat));
        const QByteArray body = server->requests().constLast().body;
        QCOMPARE(QJsonDocument::fromJson(body).object().value(u"userId"_s).toString(), userId);
    }
}

void SendFlowTest::ignoresWhatCannotBeSent_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasImage");
    QTest::addColumn<bool>("analysis");
    QTest::newRow("nothing") << u""_s << false << true;
    QTest::newRow("white space") << u" \t\n\u00A0\u2028"_s << false << true;
    QTest::newRow("white space while analysis is off") << u" "_s << false << false;
    QTest::newRow("an image while analysis is off") << u" "_s << true << false;
}

void SendFlowTest::ignoresWhatCannotBeSent()
{
    QFETCH(QString, text);
    QFETCH(bool, hasImage);
    QFETCH(bool, analysis);

    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.view.setImageAnalysisEnabled(analysis);
    if (hasImage)
        chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    const QList<Conversation> before = chat.conversations();
    const QSignalSpy writes(&chat.store, &PreferenceStore::changed);
    chat.send(text);

    QCOMPARE(chat.view.messageText(), text);
    QCOMPARE(chat.view.hasSelectedImage(), hasImage);
    QVERIFY(!chat.view.isLoading());
    QCOMPARE(chat.conversations(), before);
    QCOMPARE(writes.count(), 0);
    QVERIFY(hasSentNothing(chat, *server));
}

void SendFlowTest::sendsOneQuestionAtATime()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.send(u"una"_s);
    chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    chat.send(u"otra"_s);
    QCOMPARE(chat.view.messageText(), u"otra"_s);
    QVERIFY(chat.view.hasSelectedImage());
    QCOMPARE(chat.messages().size(), 1);
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(server->requests().size(), 1);

    chat.sendFlow.sendMessage();
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(server->requests().size(), 2);
}

void SendFlowTest::beginsNoConversationWhileItWaits()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server), TestChat::Start::BeforeTheHistoryIsLoaded);
    chat.view.setLoading(true);
    chat.send(u"hola"_s);
    QCOMPARE(chat.view.messageText(), u"hola"_s);
    QVERIFY(chat.conversations().isEmpty());
    QVERIFY(!chat.view.selectedConversationID());
    QVERIFY(hasSentNothing(chat, *server));
}

void SendFlowTest::beginsAConversationWhenNoneIsSelected()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server), TestChat::Start::BeforeTheHistoryIsLoaded);
    QVERIFY(!chat.view.selectedConversationID());
    chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    chat.send(u"hola"_s);
    QCOMPARE(chat.conversations().size(), 1);
    QCOMPARE(chat.messages().size(), 1);
    QCOMPARE(chat.messages().constFirst().text, u"hola"_s);
    QCOMPARE(chat.messages().constFirst().attachmentName, u"a.png"_s);
    QVERIFY(waitForTheEnd(chat));
    QVERIFY(server->requests().constFirst().body.contains("YWJjZA=="));
    QCOMPARE(chat.messages().constLast().text, u"respuesta"_s);
}

void SendFlowTest::beginsNoneInPlaceOfOneThatIsGone()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    const QList<Conversation> before = chat.conversations();
    const QUuid gone = QUuid::createUuid();
    chat.view.selectConversation(gone);
    chat.send(u"hola"_s);
    QVERIFY(chat.view.isLoading());
    QCOMPARE(chat.view.selectedConversationID(), gone);
    QCOMPARE(chat.conversations(), before);
    QVERIFY(waitForTheEnd(chat));
    QVERIFY(server->requests().constFirst().body.contains("hola"));
    QCOMPARE(chat.conversations(), before);
}

void SendFlowTest::sendsTheTextOfThePress_data()
{
    QTest::addColumn<QString>("textMeanwhile");
    QTest::addColumn<bool>("isImageTaken");
    QTest::addColumn<QString>("textAfterwards");
    QTest::newRow("with its image") << u" hola "_s << true << u""_s;
    QTest::newRow("alone") << u" hola "_s << false << u""_s;
    QTest::newRow("with its image, another written") << u"otra"_s << true << u"otra"_s;
    QTest::newRow("alone, another written") << u"otra"_s << false << u"otra"_s;
    QTest::newRow("alone, taken back") << u""_s << false << u""_s;
}

void SendFlowTest::sendsTheTextOfThePress()
{
    QFETCH(QString, textMeanwhile);
    QFETCH(bool, isImageTaken);
    QFETCH(QString, textAfterwards);

    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.isImageOnItsWay = true;
    chat.send(u" hola "_s);
    QVERIFY(!chat.view.isLoading());
    QVERIFY(chat.messages().isEmpty());
    QCOMPARE(chat.view.messageText(), u" hola "_s);

    chat.view.setMessageText(textMeanwhile);
    if (isImageTaken)
        chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    chat.sendWaiting();
    QVERIFY(chat.view.isLoading());
    QCOMPARE(chat.view.messageText(), textAfterwards);
    QVERIFY(!chat.view.hasSelectedImage());
    QCOMPARE(chat.messages().constFirst().text, u"hola"_s);
    QCOMPARE(chat.messages().constFirst().attachmentName.has_value(), isImageTaken);
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(server->requests().size(), 1);
    const QByteArray body = server->requests().constFirst().body;
    QVERIFY(body.contains(R"("message":"hola")"));
    QCOMPARE(body.contains("YWJjZA=="), isImageTaken);
}

void SendFlowTest::sendsNoImageThatWasTakenAway()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.isImageOnItsWay = true;
    chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    chat.send(u""_s);
    chat.view.clearSelectedImage();
    chat.sendWaiting();
    QVERIFY(!chat.view.isLoading());
    QVERIFY(chat.messages().isEmpty());

    // And waits for nothing with nothing to send.
    chat.sendWaiting = nullptr;
    chat.send(u" "_s);
    QVERIFY(!chat.sendWaiting);
}

void SendFlowTest::showsAndSavesTheQuestionBeforeTheReply_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasImage");
    QTest::addColumn<QString>("shownText");
    QTest::addColumn<QString>("title");
    QTest::newRow("text") << u" hola\nchau "_s << false << u"hola\nchau"_s << u"hola chau"_s;
    QTest::newRow("text and image") << u"hola"_s << true << u"hola"_s << u"hola"_s;
    QTest::newRow("image") << u" \n"_s << true << u"Analizar imagen"_s
                           << u"Analizá esta imagen con finalidad …"_s;
}

void SendFlowTest::showsAndSavesTheQuestionBeforeTheReply()
{
    QFETCH(QString, text);
    QFETCH(bool, hasImage);
    QFETCH(QString, shownText);
    QFETCH(QString, title);

    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    if (hasImage)
        chat.view.setSelectedImage("abcd", u"a.png"_s, u"image/png"_s);
    bool wasReadyWhenLoadingBegan = false;
    connect(&chat.view, &ContentView::isLoadingChanged, &chat.view, [&] {
        if (chat.view.isLoading())
            wasReadyWhenLoadingBegan = chat.view.messageText().isEmpty()
                && !chat.view.hasSelectedImage() && chat.stored() == chat.conversations()
                && chat.messages().size() == 1;
    });
    chat.send(text);

    // sendMessage() has returned without waiting for the network.
    QVERIFY(chat.view.isLoading());
    QVERIFY(wasReadyWhenLoadingBegan);
    QCOMPARE(chat.conversations().constFirst().title, title);
    const ChatMessage question = chat.messages().constFirst();
    QVERIFY(question.isUser);
    QVERIFY(!question.id.isNull());
    QCOMPARE(question.text, shownText);
    QCOMPARE(question.attachmentName.value_or(u"none"_s), hasImage ? u"a.png"_s : u"none"_s);
    QCOMPARE(question.imagePreviewData.value_or("none"),
             hasImage ? "preview of abcd"_ba : "none"_ba);
    QCOMPARE(chat.previewsMade, hasImage ? 1 : 0);

    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(chat.messages().size(), 2);
    QCOMPARE(chat.messages().constLast().text, u"respuesta"_s);
    QVERIFY(!chat.messages().constLast().isUser);
    QCOMPARE(chat.stored(), chat.conversations());
}

void SendFlowTest::savesTheTitleBeforeTheQuestion()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    QStringList saved;
    connect(&chat.store, &PreferenceStore::changed, &chat.view, [&](const QString &key) {
        if (key != HistoryStore::historyKey)
            return;
        const Conversation conversation = chat.stored().constFirst();
        saved.append(u"%1, %2"_s.arg(conversation.title).arg(conversation.messages.size()));
    });
    chat.send(u"hola"_s);
    QCOMPARE(saved, QStringList({u"hola, 0"_s, u"hola, 1"_s}));
    QVERIFY(waitForTheEnd(chat));
}

void SendFlowTest::titlesAConversationOnce()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.send(u"una"_s);
    QVERIFY(waitForTheEnd(chat));
    chat.send(u"otra"_s);
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(chat.conversations().constFirst().title, u"una"_s);
}

void SendFlowTest::keepsNoPreviewWhenNoneCanBeMade()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    chat.view.setSelectedImage(TestChat::imageWithoutPreview, u"a.png"_s, u"image/png"_s);
    chat.send(u"hola"_s);
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(chat.messages().constFirst().attachmentName, u"a.png"_s);
    QVERIFY(!chat.messages().constFirst().imagePreviewData);
    QVERIFY(server->requests().constFirst().body.contains(
        '"' + QByteArray(TestChat::imageWithoutPreview).toBase64() + '"'));
}

void SendFlowTest::saysWhenTheQuestionCannotBePrepared()
{
    const auto server = answeringServer();
    TestChat chat(serviceAt(*server));
    const QString text(ChatRequestBody::maximumTextLength + 1, u'a');
    chat.send(text);
    QVERIFY(!chat.view.isLoading());
    QCOMPARE(chat.messages().size(), 2);
    QCOMPARE(chat.messages().constFirst().text, text);
    QCOMPARE(chat.messages().constLast().text, u"No pude preparar la consulta."_s);
    QVERIFY(!chat.messages().constLast().isUser);
    QCOMPARE(chat.stored(), chat.conversations());
    QVERIFY(hasSentNothing(chat, *server));
}

void SendFlowTest::fillsTheReplyAsItComes()
{
    Gate secondLine;
    Gate end;
    ScriptedServer server(m_credentials, [&](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send(replyHead + chunk("\nuno\nd"));
        secondLine.wait();
        connection.send(chunk("os\n"));
        end.wait();
        connection.send(lastChunk);
        connection.close();
    });
    TestChat chat(serviceAt(server));
    chat.send(u"hola"_s);
    QVERIFY(!chat.view.replyHasStarted());
    const auto text = [&chat] { return chat.messages().constLast().text; };
    QTRY_COMPARE(text(), u"uno\n"_s);
    QVERIFY(chat.view.replyHasStarted());
    secondLine.open();
    QTRY_COMPARE(text(), u"uno\ndos\n"_s);
    QVERIFY(chat.view.isLoading());
    QVERIFY(chat.stored() != chat.conversations());
    end.open();
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(text(), u"uno\ndos"_s);
    QCOMPARE(chat.messages().size(), 2);
    QCOMPARE(chat.stored(), chat.conversations());
}

void SendFlowTest::followsTheConversationOfTheQuestion()
{
    Gate rest;
    ScriptedServer server(m_credentials, [&](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send(replyHead + chunk("uno\n"));
        rest.wait();
        connection.send(chunk("dos\n") + lastChunk);
        connection.close();
    });
    TestChat chat(serviceAt(server));
    const QUuid asked = *chat.view.selectedConversationID();
    chat.send(u"hola"_s);
    QTRY_COMPARE(chat.messages().constLast().text, u"uno\n"_s);
    chat.view.startNewConversation();
    rest.open();
    QVERIFY(waitForTheEnd(chat));
    QVERIFY(chat.messages().isEmpty());
    chat.view.selectConversation(asked);
    QCOMPARE(chat.messages().constLast().text, u"uno\ndos"_s);
}

void SendFlowTest::keepsWaitingWhileTheServiceTalks_data()
{
    QTest::addColumn<QByteArray>("beginning");
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<QByteArray>("rest");
    QTest::newRow("in the body") << replyHead << chunk(".") << chunk("fin") + lastChunk;
    QTest::newRow("in the head") << "HTTP/1.1 200 OK\r\n"_ba << "X-Wait: 1\r\n"_ba
                                 << "Content-Length: 3\r\n\r\nfin"_ba;
    QTest::newRow("in a line of the head")
        << "HTTP/1.1 200 OK\r\nX-Wait: "_ba << "1"_ba << "\r\nContent-Length: 3\r\n\r\nfin"_ba;
}

void SendFlowTest::keepsWaitingWhileTheServiceTalks()
{
    QFETCH(QByteArray, beginning);
    QFETCH(QByteArray, piece);
    QFETCH(QByteArray, rest);

    constexpr auto idleTimeout = 1000ms;
    constexpr auto pause = 150ms;
    constexpr int pieces = 8;
    static_assert(pieces * pause > idleTimeout);
    ScriptedServer server(m_credentials, [&](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send(beginning);
        for (int i = 0; i < pieces; ++i) {
            std::this_thread::sleep_for(pause);
            connection.send(piece);
        }
        connection.send(rest);
        connection.close();
    });
    TestChat chat(serviceAt(server, idleTimeout));
    chat.send(u"hola"_s);
    QVERIFY(waitForTheEnd(chat));
    QVERIFY(chat.messages().constLast().text.endsWith(u"fin"_s));
    QCOMPARE(chat.messages().size(), 2);
}

void SendFlowTest::keepsWaitingWhileTheServiceListens()
{
    constexpr auto idleTimeout = 1000ms;
    ScriptedServer server(m_credentials, [&](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest(100ms);
        connection.send(replyHead + chunk("uno\n") + lastChunk);
        connection.close();
    });
    TestChat chat(serviceAt(server, idleTimeout));
    chat.view.setSelectedImage(QByteArray(12'582'912, 'x'), u"a.png"_s, u"image/png"_s);
    QElapsedTimer elapsed;
    elapsed.start();
    chat.send(u"hola"_s);
    QVERIFY(waitForTheEnd(chat));
    QCOMPARE(chat.messages().constLast().text, u"uno"_s);
    QVERIFY(std::chrono::milliseconds(elapsed.elapsed()) > idleTimeout);
}

void SendFlowTest::waitsForNoServiceWhenItIsDestroyed_data()
{
    QTest::addColumn<bool>("talks");
    QTest::newRow("silent") << false;
    QTest::newRow("talking without end") << true;
}

void SendFlowTest::waitsForNoServiceWhenItIsDestroyed()
{
    QFETCH(bool, talks);
    ScriptedServer server(m_credentials, [talks](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        connection.send(replyHead + chunk("uno\n"));
        while (talks && connection.send(chunk("dos\n"))) { }
        connection.waitUntilClientLeaves();
    });
    QElapsedTimer elapsed;
    {
        TestChat chat(serviceAt(server));
        chat.send(u"hola"_s);
        QTRY_VERIFY(chat.view.replyHasStarted());
        elapsed.start();
    }
    QVERIFY(elapsed.elapsed() < 1'000);
}

QTEST_GUILESS_MAIN(SendFlowTest)
#include "SendFlowTest.moc"
