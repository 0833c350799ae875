#include "CurlTransfer.h"
#include "ScriptedServer.h"
#include "TestChat.h"

#include <QSignalSpy>
#include <QTest>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Script = ScriptedServer::Script;

/// Idle limits in milliseconds: one that no test reaches, and one for services that stall.
constexpr int patient = 20'000;
constexpr int impatient = 300;

const QString refused = u"El servicio rechazó la conexión."_s;
const QString connectionLost = u"Se perdió la conexión con el servicio."_s;
const QString insecure = u"No se pudo establecer una conexión segura con el servicio."_s;
const QString timedOut = u"El servicio tardó demasiado en responder."_s;
const QString invalidResponse = u"La respuesta del servidor no es válida."_s;

QString serverError(int statusCode)
{
    return u"Error del servidor (%1)."_s.arg(statusCode);
}

QString notice(const QString &description)
{
    return u"No pude completar la respuesta de Aulora IA.\n\n"_s + description;
}

QByteArray headWith(const QByteArray &headers, const QByteArray &status = "200 OK")
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/plain; charset=utf-8\r\n" + headers
        + "\r\n";
}

/// A complete answer of known length.
QByteArray answer(const QByteArray &body, const QByteArray &status = "200 OK",
                  const QByteArray &headers = {})
{
    return headWith(headers + "Content-Length: " + QByteArray::number(body.size()) + "\r\n", status)
        + body;
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

const QByteArray chunked = headWith("Transfer-Encoding: chunked\r\n");
const QByteArray lastChunk = "0\r\n\r\n";

/// What follows once the question has been read over TLS.
Script afterTheQuestion(const Script &rest)
{
    return [rest](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        rest(connection);
    };
}

Script sending(const QByteArray &bytes)
{
    return afterTheQuestion([bytes](ScriptedConnection &connection) {
        connection.send(bytes);
        connection.close();
    });
}

Script sendingThenCutting(const QByteArray &bytes)
{
    return afterTheQuestion([bytes](ScriptedConnection &connection) {
        connection.send(bytes);
        connection.cut();
    });
}

Script sendingThenResetting(const QByteArray &bytes)
{
    return afterTheQuestion([bytes](ScriptedConnection &connection) {
        connection.send(bytes);
        connection.reset();
    });
}

Script sendingThenStalling(const QByteArray &bytes)
{
    return afterTheQuestion([bytes](ScriptedConnection &connection) {
        connection.send(bytes);
        connection.waitUntilClientLeaves();
    });
}

Script sendingSingleBytes(const QByteArray &bytes)
{
    return afterTheQuestion([bytes](ScriptedConnection &connection) {
        connection.sendByteByByte(bytes);
        connection.close();
    });
}

/// Nothing but TCP.
Script sendingInTheClear(const QByteArray &bytes)
{
    return [bytes](ScriptedConnection &connection) {
        connection.send(bytes);
        connection.cut();
    };
}

} // namespace

/// One question to services that do everything a service can do, each of which must get it once.
class SendFlowFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void services_data();
    void services();
    void identities_data();
    void identities();
    void refuses();
    void aLargeQuestionIsSentOnce_data();
    void aLargeQuestionIsSentOnce();
    void aReplyMayBeOfAnyLength_data();
    void aReplyMayBeOfAnyLength();
    void aHeadWithoutEndFails_data();
    void aHeadWithoutEndFails();

private:
    AssistantService serviceAt(quint16 port, std::chrono::milliseconds idleTimeout = 20s) const;
    static QStringList assistantTexts(TestChat &chat);

    TestAuthority m_authority;
    ServerCredentials m_credentials = m_authority.issue("localhost");
};

AssistantService SendFlowFaultsTest::serviceAt(quint16 port,
                                               std::chrono::milliseconds idleTimeout) const
{
    return {.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(port)),
            .extraTrustAnchors = m_authority.certificate(),
            .idleTimeout = idleTimeout};
}

QStringList SendFlowFaultsTest::assistantTexts(TestChat &chat)
{
    QStringList texts;
    for (const ChatMessage &message : chat.messages()) {
        if (!message.isUser)
            texts += message.text;
    }
    return texts;
}

void SendFlowFaultsTest::services_data()
{
    QTest::addColumn<Script>("script");
    QTest::addColumn<int>("idleTimeout");
    QTest::addColumn<QStringList>("assistantTexts");
    QTest::addColumn<int>("questions");

    const QByteArray twoLines = "uno\ndos\n";
    const QString reply = u"uno\ndos"_s;
    const QString partialReply = u"uno\ndos\n"_s;

    const auto row = [](const char *name, const Script &script, const QStringList &assistantTexts,
                        int idleTimeout = patient) {
        QTest::newRow(name) << script << idleTimeout << assistantTexts << 1;
    };
    const auto rowWithoutTls = [](const char *name, const Script &script,
                                  const QString &description, int idleTimeout = patient) {
        QTest::newRow(name) << script << idleTimeout << QStringList{notice(description)} << 0;
    };

    // Whole replies, however they come.
    row("known length", sending(answer(twoLines)), {reply});
    row("chunks", sending(chunked + chunk("uno\nd") + chunk("os\n") + lastChunk), {reply});
    row("until the end of the connection", sending(headWith({}) + twoLines), {reply});
    row("single bytes", sendingSingleBytes(answer("¿Qué es el ñandú?\n😀\n")),
        {u"¿Qué es el ñandú?\n😀"_s});
    row("single bytes in chunks",
        sendingSingleBytes(chunked + chunk("¿Qu") + chunk("\xC3") + chunk("\xA9?") + lastChunk),
        {u"¿Qué?"_s});
    row("carriage returns and line feeds", sending(answer("uno\r\ndos\r\n")), {reply});
    row("carriage returns", sending(answer("uno\rdos\r")), {reply});
    row("next lines", sending(answer("uno\u0085dos\u0085")), {reply});
    row("line separators", sending(answer("uno\u2028dos\u2028")), {reply});
    row("paragraph separators", sending(answer("uno\u2029dos\u2029")), {reply});
    row("a last line without end", sending(answer("uno\ndos")), {reply});
    row("empty lines between", sending(answer("uno\n\n\r\n\ndos\n")), {reply});
    row("a line of spaces", sending(answer("uno\n  \ndos\n")), {u"uno\n  \ndos"_s});
    row("spaces around", sending(answer("\n \n uno \ndos \n\n")), {u"uno \ndos"_s});
    row("event framing is text", sending(answer("data: {\"a\":1}\nevent: x\n")),
        {u"data: {\"a\":1}\nevent: x"_s});
    row("no body", sending(answer({})), {});
    row("only empty lines", sending(answer("\n\r\n\n")), {});
    row("only white space", sending(answer(" \n\t\n")), {u""_s});
    row("bytes that are no text",
        sending(answer("ok \xFF\xC3\n\xE2\x82"
                       "fin\n")),
        {u"ok \uFFFD\uFFFD\n\uFFFDfin"_s});
    row("markup is text", sending(answer("<img src=\"https://localhost/x\">\n")),
        {u"<img src=\"https://localhost/x\">"_s});
    row("HTTP 1.0", sending("HTTP/1.0 200 OK\r\n\r\nuno\ndos\n"), {reply});
    row("an interim answer first", sending("HTTP/1.1 100 Continue\r\n\r\n" + answer(twoLines)),
        {reply});
    row("more than announced", sending(answer(twoLines) + "tres\n"), {reply});
    row("a cookie", sending(answer(twoLines, "200 OK", "Set-Cookie: a=b; Secure\r\n")), {reply});
    row("a large head",
        sending(answer(twoLines, "200 OK", ("X: " + QByteArray(50'000, 'x') + "\r\n").repeated(4))),
        {reply});
    row("status 201", sending(answer(twoLines, "201 Created")), {reply});
    row("status 204", sending(headWith({}, "204 No Content")), {});
    row("status 206", sending(answer(twoLines, "206 Partial Content")), {reply});
    row("status 299", sending(answer(twoLines, "299 Fine")), {reply});

    // Answers that are no success.
    const QList<QByteArray> failures = {"300 Multiple Choices",
                                        "304 Not Modified",
                                        "400 Bad Request",
                                        "403 Forbidden",
                                        "404 Not Found",
                                        "405 Method Not Allowed",
                                        "408 Request Timeout",
                                        "410 Gone",
                                        "413 Content Too Large",
                                        "415 Unsupported Media Type",
                                        "425 Too Early",
                                        "429 Too Many Requests",
                                        "500 Internal Server Error",
                                        "502 Bad Gateway",
                                        "503 Service Unavailable",
                                        "504 Gateway Timeout",
                                        "599 Unknown"};
    for (const QByteArray &status : failures)
        row("status " + status, sending(answer("nadie lee esto\n", status, "Retry-After: 0\r\n")),
            {notice(serverError(status.first(3).toInt()))});
    for (const QByteArray &status : {"301 Moved"_ba, "302 Found"_ba, "303 See Other"_ba,
                                     "307 Temporary"_ba, "308 Permanent"_ba})
        row("redirect " + status,
            sending(answer({}, status, "Location: /api/otro\r\nConnection: keep-alive\r\n")),
            {notice(serverError(status.first(3).toInt()))});
    for (const QByteArray &scheme :
         {R"(Basic realm="x")"_ba, R"(Digest realm="x", nonce="1")"_ba, "NTLM"_ba, "Negotiate"_ba})
        row("asks for a password, " + scheme,
            sending(answer({}, "401 Unauthorized", "WWW-Authenticate: " + scheme + "\r\n")),
            {notice(serverError(401))});
    row("asks for a proxy's password",
        sending(answer({}, "407 Proxy", "Proxy-Authenticate: Basic realm=\"x\"\r\n")),
        {notice(serverError(407))});
    row("changes the protocol",
        sending(headWith("Upgrade: websocket\r\n", "101 Switching Protocols")),
        {notice(serverError(101))});
    row("failure whose body never ends",
        sendingThenStalling(headWith("Content-Length: 100\r\n", "500 Error") + "a"),
        {notice(serverError(500))});
    row("compressed", sending(answer("\x1F\x8B\x08", "200 OK", "Content-Encoding: gzip\r\n")),
        {notice(invalidResponse)});
    row("compressed in transfer",
        sending(headWith("Transfer-Encoding: gzip, chunked\r\n") + chunk(twoLines) + lastChunk),
        {notice(invalidResponse)});
    row("not compressed, and says so",
        sending(answer(twoLines, "200 OK", "Content-Encoding: identity\r\n")), {reply});

    // No HTTP at all.
    row("a head with a line of 200,000 bytes",
        sending(answer(twoLines, "200 OK", "X: " + QByteArray(200'000, 'x') + "\r\n")),
        {notice(invalidResponse)});
    row("garbage", sending(QByteArray("\x00\x01\x02\xFFgarbage\r\n\r\n", 15)),
        {notice(invalidResponse)});
    row("another protocol", sending("SSH-2.0-OpenSSH_9.2\r\n"), {notice(invalidResponse)});
    row("a body without head", sending(twoLines), {notice(invalidResponse)});
    row("a status that is no number", sending("HTTP/1.1 abc OK\r\n\r\n"),
        {notice(invalidResponse)});
    row("HTTP 2", sending("HTTP/2 200 OK\r\n\r\n"), {notice(invalidResponse)});

    // Contradictory lengths and chunks.
    row("a length that is no number", sending(headWith("Content-Length: x\r\n") + twoLines),
        {notice(invalidResponse)});
    row("a negative length", sending(headWith("Content-Length: -8\r\n") + twoLines),
        {notice(invalidResponse)});
    row("two lengths", sending(headWith("Content-Length: 4\r\nContent-Length: 8\r\n") + twoLines),
        {notice(invalidResponse)});
    // Errors in chunks are reported as a broken connection.
    row("a chunk size that is no number", sending(chunked + chunk(twoLines) + "tres\r\n"),
        {partialReply, notice(connectionLost)});
    row("a negative chunk size", sending(chunked + chunk(twoLines) + "-4\r\ntres\r\n"),
        {partialReply, notice(connectionLost)});
    row("a chunk longer than its size", sending(chunked + "8\r\n" + twoLines + "tres\r\n"),
        {partialReply, notice(connectionLost)});

    // Cut off.
    row("closes at once", sending({}), {notice(connectionLost)});
    row("cuts at once", sendingThenCutting({}), {notice(connectionLost)});
    row("resets at once", sendingThenResetting({}), {notice(connectionLost)});
    row("closes in the head", sending("HTTP/1.1 200 OK\r\nContent-Ty"), {notice(connectionLost)});
    row("resets in the head", sendingThenResetting("HTTP/1.1 200 OK\r\n"),
        {notice(connectionLost)});
    row("closes after the head", sending(headWith("Content-Length: 100\r\n")),
        {notice(connectionLost)});
    row("resets after the head", sendingThenResetting(headWith("Content-Length: 100\r\n")),
        {notice(connectionLost)});
    row("cut in a line, known length",
        sendingThenCutting(headWith("Content-Length: 100\r\n") + twoLines + "tre"),
        {partialReply, notice(connectionLost)});
    row("cut in a line, chunks", sendingThenCutting(chunked + chunk(twoLines) + chunk("tre")),
        {partialReply, notice(connectionLost)});
    row("cut in a character",
        sendingThenCutting(headWith("Content-Length: 100\r\n") + twoLines + "\xF0\x9F"),
        {partialReply, notice(connectionLost)});
    row("shorter than announced", sending(headWith("Content-Length: 100\r\n") + twoLines),
        {partialReply, notice(connectionLost)});
    row("last chunk missing", sending(chunked + chunk(twoLines)),
        {partialReply, notice(connectionLost)});
    row("cut in a chunk", sending(chunked + chunk(twoLines) + "10\r\ntres"),
        {partialReply, notice(connectionLost)});
    row("reset in the body",
        sendingThenResetting(headWith("Content-Length: 100\r\n") + twoLines + "tre"),
        {partialReply, notice(connectionLost)});

    // Replies without length or chunks are whole only when TLS announces the end.
    row("until the connection is cut", sendingThenCutting(headWith({}) + twoLines),
        {partialReply, notice(connectionLost)});
    row("until the connection is cut in a line",
        sendingThenCutting(headWith({}) + twoLines + "tre"),
        {partialReply, notice(connectionLost)});
    row("until the connection is reset", sendingThenResetting(headWith({}) + twoLines),
        {partialReply, notice(connectionLost)});
    row("until the connection is cut, HTTP 1.0",
        sendingThenCutting("HTTP/1.0 200 OK\r\n\r\n" + twoLines),
        {partialReply, notice(connectionLost)});
    row("until the connection is cut, nothing", sendingThenCutting(headWith({})),
        {notice(connectionLost)});
    row("known length, then cut", sendingThenCutting(answer(twoLines)), {reply});

    row("garbage past TLS", afterTheQuestion([twoLines](ScriptedConnection &connection) {
            connection.send(chunked + chunk(twoLines));
            connection.sendPastTls("no es TLS, ni parecido");
            connection.cut();
        }),
        {partialReply, notice(connectionLost)});

    // Silent.
    row("stalls before the head", sendingThenStalling({}), {notice(timedOut)}, impatient);
    row("stalls in the head", sendingThenStalling("HTTP/1.1 200 OK\r\n"), {notice(timedOut)},
        impatient);
    row("stalls in the body", sendingThenStalling(chunked + chunk(twoLines) + chunk("tre")),
        {partialReply, notice(timedOut)}, impatient);

    // Not TLS.
    rowWithoutTls("speaks plain HTTP", sendingInTheClear(answer(twoLines, "400 Bad Request")),
                  insecure);
    rowWithoutTls("garbage instead of TLS", sendingInTheClear("\x01\x02\x03garbage, and more"),
                  insecure);
    rowWithoutTls("closes before TLS", sendingInTheClear({}), insecure);
    rowWithoutTls(
        "resets before TLS",
        [](ScriptedConnection &connection) {
            connection.waitForBytes();
            connection.reset();
        },
        insecure);
    rowWithoutTls(
        "stalls before TLS",
        [](ScriptedConnection &connection) { connection.waitUntilClientLeaves(); }, timedOut,
        impatient);
}

void SendFlowFaultsTest::services()
{
    QFETCH(Script, script);
    QFETCH(int, idleTimeout);
    QFETCH(QStringList, assistantTexts);
    QFETCH(int, questions);

    ScriptedServer server(m_credentials, script);
    TestChat chat(serviceAt(server.port(), std::chrono::milliseconds(idleTimeout)));
    chat.send(u"hola"_s);
    QVERIFY(chat.view.isLoading());
    QTRY_VERIFY_WITH_TIMEOUT(!chat.view.isLoading(), 30'000);

    QCOMPARE(this->assistantTexts(chat), assistantTexts);
    QCOMPARE(chat.messages().constFirst().text, u"hola"_s);
    QCOMPARE(chat.stored(), chat.conversations());
    QVERIFY(!server.waitForRequests(2, 100ms));
    QCOMPARE(server.requests().size(), questions);
    // Connecting may be tried again, for a name can have several addresses; asking may not.
    if (questions == 1)
        QCOMPARE(server.connectionCount(), 1);
    for (const RecordedRequest &request : server.requests())
        QVERIFY(request.head.startsWith("POST /api/chat HTTP/1.1\r\n"));
}

void SendFlowFaultsTest::identities_data()
{
    QTest::addColumn<ServerCredentials>("credentials");
    QTest::addColumn<QByteArray>("trusted");
    QTest::addColumn<bool>("isTrusted");

    const ServerCredentials selfSigned = selfSignedCredentials("localhost");
    const QByteArray authority = m_authority.certificate();
    QTest::newRow("vouched for by a trusted authority") << m_credentials << authority << true;
    QTest::newRow("itself trusted") << selfSigned << selfSigned.certificate << true;
    QTest::newRow("one of two trusted") << selfSigned << authority + selfSigned.certificate << true;
    QTest::newRow("expired") << m_authority.issue("localhost", Validity::Expired) << authority
                             << false;
    QTest::newRow("not yet valid")
        << m_authority.issue("localhost", Validity::NotYet) << authority << false;
    QTest::newRow("another host's") << m_authority.issue("otro.test") << authority << false;
    QTest::newRow("another host's, itself trusted")
        << selfSignedCredentials("otro.test") << selfSignedCredentials("otro.test").certificate
        << false;
    QTest::newRow("self-signed") << selfSigned << authority << false;
    QTest::newRow("vouched for by an unknown authority")
        << TestAuthority().issue("localhost") << authority << false;
    QTest::newRow("nothing trusted but the system's roots")
        << m_credentials << QByteArray() << false;
}

void SendFlowFaultsTest::identities()
{
    QFETCH(ServerCredentials, credentials);
    QFETCH(QByteArray, trusted);
    QFETCH(bool, isTrusted);

    ScriptedServer server(credentials, sending(answer("uno\n")));
    AssistantService service = serviceAt(server.port());
    service.extraTrustAnchors = trusted;
    TestChat chat(service);
    chat.send(u"hola"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!chat.view.isLoading(), 30'000);

    QCOMPARE(assistantTexts(chat), QStringList{isTrusted ? u"uno"_s : notice(insecure)});
    QCOMPARE(server.requests().size(), isTrusted ? 1 : 0);
}

void SendFlowFaultsTest::refuses()
{
    TestChat chat(serviceAt(unusedPort()));
    chat.send(u"hola"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!chat.view.isLoading(), 30'000);
    QCOMPARE(assistantTexts(chat), QStringList{notice(refused)});
    QCOMPARE(chat.stored(), chat.conversations());
}

void SendFlowFaultsTest::aLargeQuestionIsSentOnce_data()
{
    QTest::addColumn<Script>("script");
    QTest::addColumn<int>("idleTimeout");
    QTest::addColumn<QString>("assistantText");
    QTest::addColumn<bool>("arrivesWhole");

    const auto inTheMiddle = [](const Script &rest) {
        return Script([rest](ScriptedConnection &connection) {
            if (!connection.startTls())
                return;
            connection.readHead();
            rest(connection);
        });
    };
    QTest::newRow("answered") << sending(answer("uno\n")) << patient << u"uno"_s << true;
    QTest::newRow("reset") << inTheMiddle(
        [](ScriptedConnection &connection) { connection.reset(); })
                           << patient << notice(connectionLost) << false;
    QTest::newRow("stalled") << inTheMiddle(
        [](ScriptedConnection &connection) { connection.waitWithoutReading(); })
                             << impatient << notice(timedOut) << false;
    QTest::newRow("answered at the head") << inTheMiddle([](ScriptedConnection &connection) {
        connection.send(answer("uno\n"));
        connection.close();
    }) << patient << u"uno"_s << false;
    QTest::newRow("refused at the head") << inTheMiddle([](ScriptedConnection &connection) {
        connection.send(answer("no\n", "413 Content Too Large", "Connection: close\r\n"));
        connection.close();
    }) << patient << notice(serverError(413))
                                         << false;
}

void SendFlowFaultsTest::aLargeQuestionIsSentOnce()
{
    QFETCH(Script, script);
    QFETCH(int, idleTimeout);
    QFETCH(QString, assistantText);
    QFETCH(bool, arrivesWhole);

    ScriptedServer server(m_credentials, script);
    TestChat chat(serviceAt(server.port(), std::chrono::milliseconds(idleTimeout)));
    const QByteArray image(12'582'912, 'x');
    chat.view.setSelectedImage(image, u"grande.png"_s, u"image/png"_s);
    chat.send(u"hola"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!chat.view.isLoading(), 30'000);

    QCOMPARE(assistantTexts(chat), QStringList{assistantText});
    QVERIFY(!server.waitForRequests(2, 100ms));
    QCOMPARE(server.connectionCount(), 1);
    QCOMPARE(server.requests().size(), 1);
    if (arrivesWhole)
        QVERIFY(server.requests().constFirst().body.contains('"' + image.toBase64() + '"'));
}

void SendFlowFaultsTest::aReplyMayBeOfAnyLength_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::newRow("one line") << QByteArray(65'536, 'a');
    QTest::newRow("lines") << (QByteArray(8 * 1024 - 1, 'a') + '\n').repeated(8);
}

void SendFlowFaultsTest::aReplyMayBeOfAnyLength()
{
    QFETCH(QByteArray, piece);

    // With a cost that grows with the square of a line's length this would not end in time.
    constexpr int pieces = 1'200;
    ScriptedServer server(m_credentials, afterTheQuestion([&](ScriptedConnection &connection) {
                              connection.send(chunked);
                              for (int i = 0; i < pieces; ++i)
                                  connection.send(chunk(piece));
                              connection.send(chunk("fin\n") + lastChunk);
                              connection.close();
                          }));
    TestChat chat(serviceAt(server.port()));
    chat.send(u"hola"_s);
    // An event loop that does not sleep between its turns, as that of the program.
    QVERIFY(QSignalSpy(&chat.view, &ContentView::isLoadingChanged).wait(120'000));
    QCOMPARE(chat.messages().size(), 2);
    const QString &reply = chat.messages().constLast().text;
    QCOMPARE(reply.size(), pieces * piece.size() + 3);
    QCOMPARE(reply.count(u'\n'), pieces * piece.count('\n'));
    QVERIFY(reply.endsWith(u"fin"_s));
    QCOMPARE(server.requests().size(), 1);
}

void SendFlowFaultsTest::aHeadWithoutEndFails_data()
{
    QTest::addColumn<QByteArray>("beginning");
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<QStringList>("assistantTexts");
    const QByteArray field = "X-Padding: " + QByteArray(1024, 'a') + "\r\n";
    QTest::newRow("fields") << "HTTP/1.1 200 OK\r\n"_ba << field
                            << QStringList{notice(invalidResponse)};
    QTest::newRow("one line") << "HTTP/1.1 200 OK\r\nX: "_ba << QByteArray(4096, 'a')
                              << QStringList{notice(invalidResponse)};
    QTest::newRow("interim answers") << QByteArray() << "HTTP/1.1 100 Continue\r\n\r\n"_ba
                                     << QStringList{notice(invalidResponse)};
    QTest::newRow("trailers") << chunked + chunk("uno\n") + "0\r\n"
                              << field << QStringList{u"uno\n"_s, notice(invalidResponse)};
}

void SendFlowFaultsTest::aHeadWithoutEndFails()
{
    QFETCH(QByteArray, beginning);
    QFETCH(QByteArray, piece);
    QFETCH(QStringList, assistantTexts);

    std::atomic<qint64> sentSize = 0;
    ScriptedServer server(m_credentials, afterTheQuestion([&](ScriptedConnection &connection) {
                              connection.send(beginning);
                              while (connection.send(piece))
                                  sentSize += piece.size();
                          }));
    TestChat chat(serviceAt(server.port()));
    chat.send(u"hola"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!chat.view.isLoading(), 60'000);
    QCOMPARE(this->assistantTexts(chat), assistantTexts);
    QCOMPARE(server.requests().size(), 1);
    // What is on its way between the two does not count.
    constexpr qint64 slack = qint64(8) * 1024 * 1024;
    QVERIFY(sentSize < qint64(CurlTransfer::maximumHeadSize) + slack);
}

QTEST_GUILESS_MAIN(SendFlowFaultsTest)
#include "SendFlowFaultsTest.moc"
