#include "ScriptedServer.h"
#include "TestChat.h"
#include "TransportError.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// The families of the loopback addresses that a name has, in their order. Each name is looked up
/// once in a while only, so every test takes names of its own.
class Names
{
public:
    static void set(const QByteArray &name, const std::vector<int> &families)
    {
        const std::scoped_lock lock(s_mutex);
        s_families[name] = families;
    }
    static std::vector<int> families(const QByteArray &name)
    {
        const std::scoped_lock lock(s_mutex);
        return s_families[name];
    }

private:
    static inline std::mutex s_mutex;
    static inline std::map<QByteArray, std::vector<int>> s_families;
};

struct LoopbackAddress
{
    addrinfo info{};
    sockaddr_in ipv4{};
    sockaddr_in6 ipv6{};
};

addrinfo *loopbackAddress(int family, in_port_t port, addrinfo *next)
{
    auto *address = new LoopbackAddress;
    address->info.ai_family = family;
    address->info.ai_socktype = SOCK_STREAM;
    address->info.ai_next = next;
    if (family == AF_INET) {
        address->ipv4.sin_family = AF_INET;
        address->ipv4.sin_port = port;
        address->ipv4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address->info.ai_addr = reinterpret_cast<sockaddr *>(&address->ipv4);
        address->info.ai_addrlen = sizeof address->ipv4;
    } else {
        address->ipv6.sin6_family = AF_INET6;
        address->ipv6.sin6_port = port;
        address->ipv6.sin6_addr = in6addr_loopback;
        address->info.ai_addr = reinterpret_cast<sockaddr *>(&address->ipv6);
        address->info.ai_addrlen = sizeof address->ipv6;
    }
    return &address->info;
}

} // namespace

// Take the place of the C library's functions for the network library too. Theirs have reserved
// names for their parameters.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *,
                           addrinfo **result)
{
    const in_port_t port = htons(quint16(QByteArray(service).toUInt()));
    std::vector<int> families = Names::families(name);
    std::ranges::reverse(families);
    *result = nullptr;
    for (const int family : families)
        *result = loopbackAddress(family, port, *result);
    return *result ? 0 : EAI_NONAME;
}

extern "C" void freeaddrinfo(addrinfo *first) noexcept
{
    while (first) {
        auto *address = reinterpret_cast<LoopbackAddress *>(first);
        first = first->ai_next;
        delete address;
    }
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

/// One question to a service whose name has several addresses, not all of which answer.
class SendFlowAddressesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheService_data();
    void findsTheService();
    void triesAnotherAddressWhenOneIsSilent_data();
    void triesAnotherAddressWhenOneIsSilent();
    void findsTheServiceByItsAddress_data();
    void findsTheServiceByItsAddress();
    void saysWhyItFindsNone_data();
    void saysWhyItFindsNone();

private:
    /// The last message of a chat that asked the service at `host`, once the exchange has ended.
    QString answerFrom(const QString &host, quint16 port) const;

    TestAuthority m_authority;
};

namespace {

/// Takes a port of ::1 and leaves what connects to it without an answer, as a firewall does that
/// drops packets: its queue of connections is full, and nobody takes any.
class SilentAddress
{
public:
    explicit SilentAddress(quint16 port)
    {
        m_address.sin6_family = AF_INET6;
        m_address.sin6_addr = in6addr_loopback;
        m_address.sin6_port = htons(port);
        m_isSilent
            = bind(m_listener, address(), sizeof m_address) == 0 && listen(m_listener, 0) == 0;
        for (const int filler : m_fillers)
            (void)::connect(filler, address(), sizeof m_address);
    }
    ~SilentAddress()
    {
        close(m_listener);
        for (const int filler : m_fillers)
            close(filler);
    }
    SilentAddress(const SilentAddress &) = delete;
    SilentAddress &operator=(const SilentAddress &) = delete;

    bool isSilent() const { return m_isSilent; }

private:
    const sockaddr *address() const { return reinterpret_cast<const sockaddr *>(&m_address); }
    static int makeSocket() { return socket(AF_INET6, SOCK_STREAM | SOCK_NONBLOCK, 0); }

    sockaddr_in6 m_address{};
    int m_listener = makeSocket();
    std::array<int, 3> m_fillers{makeSocket(), makeSocket(), makeSocket()};
    bool m_isSilent = false;
};

void answer(ScriptedConnection &connection)
{
    if (!connection.startTls())
        return;
    connection.readRequest();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nrespuesta\n");
    connection.close();
}

} // namespace

QString SendFlowAddressesTest::answerFrom(const QString &host, quint16 port) const
{
    TestChat chat({.apiURL = QUrl(u"https://%1:%2/api/chat"_s.arg(host).arg(port)),
                   .extraTrustAnchors = m_authority.certificate()});
    chat.send(u"hola"_s);
    if (!QTest::qWaitFor([&chat] { return !chat.view.isLoading(); }, 30'000))
        return u"no end"_s;
    return chat.messages().constLast().text;
}

void SendFlowAddressesTest::findsTheService_data()
{
    QTest::addColumn<std::vector<int>>("families");
    QTest::addColumn<Loopback>("loopback");
    using Families = std::vector<int>;
    QTest::newRow("ipv4") << Families{AF_INET} << Loopback::IPv4;
    QTest::newRow("ipv6") << Families{AF_INET6} << Loopback::IPv6;
    QTest::newRow("ipv6-deaf") << Families{AF_INET6, AF_INET} << Loopback::IPv4;
    QTest::newRow("ipv4-deaf") << Families{AF_INET, AF_INET6} << Loopback::IPv6;
    QTest::newRow("both") << Families{AF_INET6, AF_INET} << Loopback::Both;
    QTest::newRow("both-the-other-way") << Families{AF_INET, AF_INET6} << Loopback::Both;
}

void SendFlowAddressesTest::findsTheService()
{
    QFETCH(std::vector<int>, families);
    QFETCH(Loopback, loopback);
    if (loopback != Loopback::IPv4 && !hasIPv6Loopback())
        QSKIP("this system has no IPv6");

    const QByteArray host = QTest::currentDataTag() + ".test"_ba;
    Names::set(host, families);
    const ScriptedServer server(m_authority.issue(host), answer, loopback);
    QCOMPARE(answerFrom(QString::fromLatin1(host), server.port()), u"respuesta"_s);
    QCOMPARE(server.connectionCount(), 1);
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(server.requests().constFirst().head.contains(
        "\r\nHost: " + host + ':' + QByteArray::number(server.port()) + "\r\n"));
}

void SendFlowAddressesTest::triesAnotherAddressWhenOneIsSilent_data()
{
    QTest::addColumn<std::vector<int>>("families");
    using Families = std::vector<int>;
    QTest::newRow("silent-first") << Families{AF_INET6, AF_INET};
    QTest::newRow("silent-last") << Families{AF_INET, AF_INET6};
}

void SendFlowAddressesTest::triesAnotherAddressWhenOneIsSilent()
{
    QFETCH(std::vector<int>, families);
    if (!hasIPv6Loopback())
        QSKIP("this system has no IPv6");

    const QByteArray host = QTest::currentDataTag() + ".test"_ba;
    Names::set(host, families);
    const ScriptedServer server(m_authority.issue(host), answer);
    const SilentAddress silentAddress(server.port());
    QVERIFY(silentAddress.isSilent());
    QElapsedTimer elapsed;
    elapsed.start();
    QCOMPARE(answerFrom(QString::fromLatin1(host), server.port()), u"respuesta"_s);
    QVERIFY(elapsed.elapsed() < 1'000);
    QCOMPARE(server.requests().size(), 1);
}

void SendFlowAddressesTest::findsTheServiceByItsAddress_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QString>("host");
    QTest::addColumn<Loopback>("loopback");
    QTest::newRow("IPv4") << "127.0.0.1"_ba << u"127.0.0.1"_s << Loopback::IPv4;
    QTest::newRow("IPv6") << "::1"_ba << u"[::1]"_s << Loopback::IPv6;
}

void SendFlowAddressesTest::findsTheServiceByItsAddress()
{
    QFETCH(QByteArray, address);
    QFETCH(QString, host);
    QFETCH(Loopback, loopback);
    if (loopback == Loopback::IPv6 && !hasIPv6Loopback())
        QSKIP("this system has no IPv6");

    const ScriptedServer server(m_authority.issue(address), answer, loopback);
    QCOMPARE(answerFrom(host, server.port()), u"respuesta"_s);
    QCOMPARE(server.requests().size(), 1);
    QVERIFY(server.requests().constFirst().head.contains(
        "\r\nHost: " + host.toLatin1() + ':' + QByteArray::number(server.port()) + "\r\n"));
}

void SendFlowAddressesTest::saysWhyItFindsNone_data()
{
    QTest::addColumn<std::vector<int>>("families");
    QTest::addColumn<QString>("description");
    using Families = std::vector<int>;
    const QString refused = u"El servicio rechazó la conexión."_s;
    QTest::newRow("nobody-at-ipv4") << Families{AF_INET} << refused;
    QTest::newRow("nobody-at-both") << Families{AF_INET6, AF_INET} << refused;
    QTest::newRow("no-such-name") << Families{}
                                  << (currentNetworkPresence() == NetworkPresence::Absent
                                          ? u"No hay conexión a Internet."_s
                                          : u"No se encontró el servicio."_s);
}

void SendFlowAddressesTest::saysWhyItFindsNone()
{
    QFETCH(std::vector<int>, families);
    QFETCH(QString, description);
    const QByteArray host = QTest::currentDataTag() + ".test"_ba;
    Names::set(host, families);
    QCOMPARE(answerFrom(QString::fromLatin1(host), unusedPort()),
             u"No pude completar la respuesta de Aulora IA.\n\n"_s + description);
}

QTEST_GUILESS_MAIN(SendFlowAddressesTest)
#include "SendFlowAddressesTest.moc"
