#include "ScriptedServer.h"
#include "TestChat.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <dlfcn.h>
#include <mutex>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Script = ScriptedServer::Script;

constexpr int patient = 20'000;
constexpr int impatient = 300;

const QString refused = u"El proxy de la red rechazó la conexión."_s;
const QString needsPassword = u"El proxy de la red pide una contraseña."_s;
const QString timedOut = u"El proxy de la red tardó demasiado en responder."_s;
const QString insecure = u"No se pudo establecer una conexión segura con el servicio."_s;
const QString connectionLost = u"Se perdió la conexión con el servicio."_s;

QString notice(const QString &description)
{
    return u"No pude completar la respuesta de Aulora IA.\n\n"_s + description;
}

/// The service behind the proxy; it has read the question.
void answer(ScriptedConnection &connection)
{
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nrespuesta\n");
    connection.close();
}

Script throughTheTunnel(const Script &rest)
{
    return [rest](ScriptedConnection &connection) {
        connection.openTunnel();
        if (!connection.startTls())
            return;
        connection.readRequest();
        rest(connection);
    };
}

Script answeringTheProxyRequest(const QByteArray &bytes)
{
    return [bytes](ScriptedConnection &connection) {
        connection.readHead();
        connection.send(bytes);
        connection.cut();
    };
}

/// The lookups of proxies by the system's library for that.
struct Lookups
{
    static inline std::atomic<int> count = 0;
    /// They wait while it is locked.
    static inline std::mutex mutex;
};

} // namespace

// Replaces libproxy's function, which Qt calls, and passes the call on.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" char **px_proxy_factory_get_proxies(void *factory, const char *url)
{
    ++Lookups::count;
    const std::scoped_lock lock(Lookups::mutex);
    using Function = char **(*)(void *, const char *);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, __func__))(factory, url);
}
// NOLINTEND(readability-identifier-naming)

/// One question from a network that has a proxy, as the environment says.
class SendFlowProxiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();
    void tellsTheProxyTheHostOnly();
    void tellsTheProxyItsPassword();
    void asksNoProxyForThisMachine();
    void asksTheSystemForEachQuestion();
    void proxies_data();
    void proxies();
    void saysWhenThereIsNoProxy();
    void looksUpNothingBeforeAQuestion();
    void waitsForNoLookupWithoutEnd();

private:
    static void useProxy(const ScriptedServer &proxy, const QByteArray &credentials = {});
    /// The service at a name that nothing but a proxy knows.
    AssistantService service(std::chrono::milliseconds idleTimeout = 20s) const;
    /// The last message of `chat` once it has asked a question and the exchange has ended.
    static QString answerTo(TestChat &chat);

    TestAuthority m_authority;
    ServerCredentials m_credentials = m_authority.issue("assistant.test");
};

void SendFlowProxiesTest::init()
{
    // Ignore the desktop's own proxy settings.
    for (const char *name :
         {"https_proxy", "http_proxy", "all_proxy", "HTTPS_PROXY", "HTTP_PROXY", "ALL_PROXY",
          "no_proxy", "NO_PROXY", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION"})
        qunsetenv(name);
}

void SendFlowProxiesTest::cleanupTestCase()
{
    init();
}

void SendFlowProxiesTest::useProxy(const ScriptedServer &proxy, const QByteArray &credentials)
{
    const QByteArray address
        = "http://" + credentials + "127.0.0.1:" + QByteArray::number(proxy.port());
    qputenv("https_proxy", address);
    qputenv("http_proxy", address);
}

AssistantService SendFlowProxiesTest::service(std::chrono::milliseconds idleTimeout) const
{
    return {.apiURL = QUrl(u"https://assistant.test/api/chat"_s),
            .extraTrustAnchors = m_authority.certificate(),
            .idleTimeout = idleTimeout};
}

QString SendFlowProxiesTest::answerTo(TestChat &chat)
{
    chat.send(u"hola"_s);
    if (!QTest::qWaitFor([&chat] { return !chat.view.isLoading(); }, 30'000))
        return u"no end"_s;
    return chat.messages().constLast().text;
}

void SendFlowProxiesTest::tellsTheProxyTheHostOnly()
{
    const ScriptedServer proxy(m_credentials, throughTheTunnel(answer));
    useProxy(proxy);
    TestChat chat(service());
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    QCOMPARE(proxy.connectionCount(), 1);
    QCOMPARE(proxy.requests().size(), 2);
    QCOMPARE(proxy.requests().constFirst().head,
             "CONNECT assistant.test:443 HTTP/1.1\r\nHost: assistant.test:443\r\n\r\n"_ba);
    QVERIFY(proxy.requests().constFirst().body.isEmpty());
    // That one came through the tunnel, in TLS.
    const RecordedRequest question = proxy.requests().constLast();
    QVERIFY(question.head.startsWith("POST /api/chat HTTP/1.1\r\nHost: assistant.test\r\n"));
    QVERIFY(!question.head.toLower().contains("proxy"));
    QVERIFY(question.body.contains("hola"));
}

void SendFlowProxiesTest::tellsTheProxyItsPassword()
{
    const ScriptedServer proxy(m_credentials, throughTheTunnel(answer));
    useProxy(proxy, "ana:secreta@");
    TestChat chat(service());
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    QVERIFY(proxy.requests().constFirst().head.contains("\r\nProxy-Authorization: Basic "
                                                        + "ana:secreta"_ba.toBase64() + "\r\n"));
    QVERIFY(!proxy.requests().constLast().head.contains("Authorization"));
}

void SendFlowProxiesTest::asksNoProxyForThisMachine()
{
    const ScriptedServer proxy(m_credentials, [](ScriptedConnection &) { });
    useProxy(proxy);
    const ScriptedServer server(m_authority.issue("localhost"), [](ScriptedConnection &connection) {
        if (!connection.startTls())
            return;
        connection.readRequest();
        answer(connection);
    });
    AssistantService local = service();
    local.apiURL = QUrl(u"https://localhost:%1/api/chat"_s.arg(server.port()));
    TestChat chat(local);
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    QCOMPARE(proxy.connectionCount(), 0);
}

void SendFlowProxiesTest::asksTheSystemForEachQuestion()
{
    const ScriptedServer first(m_credentials, throughTheTunnel(answer));
    const ScriptedServer second(m_credentials, throughTheTunnel(answer));
    TestChat chat(service());
    // Made, but nothing sent yet.
    useProxy(first);
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    useProxy(second);
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    QCOMPARE(first.connectionCount(), 1);
    QCOMPARE(second.connectionCount(), 1);
}

void SendFlowProxiesTest::proxies_data()
{
    QTest::addColumn<Script>("script");
    QTest::addColumn<int>("idleTimeout");
    QTest::addColumn<QString>("assistantText");
    QTest::addColumn<int>("questions");

    const auto row = [](const char *name, const Script &script, const QString &description,
                        int idleTimeout = patient) {
        QTest::newRow(name) << script << idleTimeout << notice(description) << 0;
    };
    row("forbids", answeringTheProxyRequest("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n"),
        refused);
    row("does not reach the service",
        answeringTheProxyRequest("HTTP/1.1 503 No\r\nContent-Length: 3\r\n\r\nno\n"), refused);
    for (const QByteArray &scheme :
         {R"(Basic realm="x")"_ba, R"(Digest realm="x", nonce="1")"_ba, "NTLM"_ba, "Negotiate"_ba})
        row("asks for a password, " + scheme,
            answeringTheProxyRequest("HTTP/1.1 407 Password\r\nProxy-Authenticate: " + scheme
                                     + "\r\nContent-Length: 0\r\n\r\n"),
            needsPassword);
    row("redirects", answeringTheProxyRequest("HTTP/1.1 302 Portal\r\nLocation: /\r\n\r\n"),
        refused);
    row("garbage", answeringTheProxyRequest("SSH-2.0-OpenSSH_9.2\r\n"), refused);
    row("closes", answeringTheProxyRequest({}), refused);
    row("resets", [](ScriptedConnection &connection) { connection.reset(); }, refused);
    row(
        "silent", [](ScriptedConnection &connection) { connection.waitUntilClientLeaves(); },
        timedOut, impatient);
    row(
        "head without end",
        [](ScriptedConnection &connection) {
            connection.readHead();
            connection.send("HTTP/1.1 403 Forbidden\r\n");
            while (connection.send("X: " + QByteArray(4096, 'x') + "\r\n")) { }
        },
        refused);

    // Behind the proxy, errors are the service's.
    row(
        "no TLS in the tunnel",
        [](ScriptedConnection &connection) {
            connection.openTunnel();
            connection.send("no es TLS, ni parecido");
            connection.cut();
        },
        insecure);
    QTest::newRow("service closes")
        << throughTheTunnel([](ScriptedConnection &connection) { connection.close(); }) << patient
        << notice(connectionLost) << 1;
    QTest::newRow("service asks for a proxy's password")
        << throughTheTunnel([](ScriptedConnection &connection) {
               connection.send("HTTP/1.1 407 Proxy\r\nContent-Length: 0\r\n\r\n");
               connection.close();
           })
        << patient << notice(u"Error del servidor (407)."_s) << 1;
    QTest::newRow("service is silent") << throughTheTunnel([](ScriptedConnection &connection) {
        connection.waitUntilClientLeaves();
    }) << impatient << notice(u"El servicio tardó demasiado en responder."_s)
                                       << 1;
}

void SendFlowProxiesTest::proxies()
{
    QFETCH(Script, script);
    QFETCH(int, idleTimeout);
    QFETCH(QString, assistantText);
    QFETCH(int, questions);

    const ScriptedServer proxy(m_credentials, script);
    useProxy(proxy);
    TestChat chat(service(std::chrono::milliseconds(idleTimeout)));
    QCOMPARE(answerTo(chat), assistantText);
    QVERIFY(!proxy.waitForRequests(3, 100ms));
    QCOMPARE(proxy.connectionCount(), 1);
    int posts = 0;
    for (const RecordedRequest &request : proxy.requests())
        posts += request.head.startsWith("POST ") ? 1 : 0;
    QCOMPARE(posts, questions);
}

void SendFlowProxiesTest::saysWhenThereIsNoProxy()
{
    qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(unusedPort()));
    TestChat chat(service());
    QCOMPARE(answerTo(chat), notice(refused));
}

void SendFlowProxiesTest::looksUpNothingBeforeAQuestion()
{
    const int before = Lookups::count;
    TestChat chat(service());
    QTest::qWait(0);
    QCOMPARE(Lookups::count, before);
    (void)answerTo(chat);
    if (Lookups::count == before)
        QSKIP("this Qt looks proxies up without libproxy");
}

void SendFlowProxiesTest::waitsForNoLookupWithoutEnd()
{
    const ScriptedServer proxy(m_credentials, throughTheTunnel(answer));
    useProxy(proxy);
    const int before = Lookups::count;
    {
        const std::scoped_lock lock(Lookups::mutex);
        TestChat impatientChat(service(std::chrono::milliseconds(impatient)));
        const QString text = answerTo(impatientChat);
        if (Lookups::count == before)
            QSKIP("this Qt looks proxies up without libproxy");
        QCOMPARE(text, notice(timedOut));

        QElapsedTimer elapsed;
        {
            TestChat chat(service());
            chat.send(u"hola"_s);
            elapsed.start();
        }
        QVERIFY(elapsed.elapsed() < 1'000);
    }
    // Answered after those that were left behind.
    TestChat chat(service());
    QCOMPARE(answerTo(chat), u"respuesta"_s);
    QCOMPARE(proxy.connectionCount(), 1);
}

QTEST_GUILESS_MAIN(SendFlowProxiesTest)
#include "SendFlowProxiesTest.moc"
