#include "TransportError.h"

#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;

class TransportErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void says_data()
    {
        QTest::addColumn<CurlFailure>("failure");
        QTest::addColumn<NetworkPresence>("presence");
        QTest::addColumn<QString>("description");

        const QString refused = u"El servicio rechazó la conexión."_s;
        const QString hostNotFound = u"No se encontró el servicio."_s;
        const QString lost = u"Se perdió la conexión con el servicio."_s;
        const QString insecure = u"No se pudo establecer una conexión segura con el servicio."_s;
        const QString timedOut = u"El servicio tardó demasiado en responder."_s;
        const QString noNetwork = u"No hay conexión a Internet."_s;
        const QString proxyRefused = u"El proxy de la red rechazó la conexión."_s;
        const QString other = u"No se pudo completar la comunicación con el servicio."_s;
        const auto present = NetworkPresence::Present;
        const auto absent = NetworkPresence::Absent;

        QTest::newRow("refused") << CurlFailure{CURLE_COULDNT_CONNECT, ECONNREFUSED} << present
                                 << refused;
        QTest::newRow("refused without network")
            << CurlFailure{CURLE_COULDNT_CONNECT, ECONNREFUSED} << absent << refused;
        QTest::newRow("silent address")
            << CurlFailure{CURLE_COULDNT_CONNECT, ETIMEDOUT} << present << timedOut;
        QTest::newRow("host not found")
            << CurlFailure{CURLE_COULDNT_RESOLVE_HOST} << present << hostNotFound;
        QTest::newRow("host not found without network")
            << CurlFailure{CURLE_COULDNT_RESOLVE_HOST} << absent << noNetwork;
        QTest::newRow("unreachable")
            << CurlFailure{CURLE_COULDNT_CONNECT, ENETUNREACH} << present << lost;
        QTest::newRow("unreachable without network")
            << CurlFailure{CURLE_COULDNT_CONNECT, ENETUNREACH} << absent << noNetwork;
        QTest::newRow("nothing received") << CurlFailure{CURLE_GOT_NOTHING} << present << lost;
        QTest::newRow("cut off") << CurlFailure{CURLE_PARTIAL_FILE} << present << lost;
        QTest::newRow("reset") << CurlFailure{CURLE_RECV_ERROR} << present << lost;
        QTest::newRow("reset while sending") << CurlFailure{CURLE_SEND_ERROR} << present << lost;
        QTest::newRow("handshake") << CurlFailure{CURLE_SSL_CONNECT_ERROR} << present << insecure;
        QTest::newRow("certificate")
            << CurlFailure{CURLE_PEER_FAILED_VERIFICATION} << present << insecure;
        QTest::newRow("timed out") << CurlFailure{CURLE_OPERATION_TIMEDOUT} << present << timedOut;
        QTest::newRow("anything else") << CurlFailure{CURLE_FAILED_INIT} << present << other;

        QTest::newRow("proxy not found") << CurlFailure{CURLE_COULDNT_RESOLVE_PROXY, 0, 0}
                                         << present << u"No se encontró el proxy de la red."_s;
        QTest::newRow("proxy not found without network")
            << CurlFailure{CURLE_COULDNT_RESOLVE_PROXY, 0, 0} << absent << noNetwork;
        QTest::newRow("no proxy at its address")
            << CurlFailure{CURLE_COULDNT_CONNECT, ECONNREFUSED, 0} << present << proxyRefused;
        QTest::newRow("proxy closes")
            << CurlFailure{CURLE_RECV_ERROR, 0, 0} << present << proxyRefused;
        QTest::newRow("proxy forbids")
            << CurlFailure{CURLE_RECV_ERROR, 0, 403} << present << proxyRefused;
        QTest::newRow("proxy asks for a password")
            << CurlFailure{CURLE_RECV_ERROR, 0, 407} << present
            << u"El proxy de la red pide una contraseña."_s;
        QTest::newRow("silent proxy") << CurlFailure{CURLE_OPERATION_TIMEDOUT, 0, 0} << present
                                      << u"El proxy de la red tardó demasiado en responder."_s;
        QTest::newRow("certificate behind a proxy")
            << CurlFailure{CURLE_PEER_FAILED_VERIFICATION, 0, 0} << present << insecure;
    }
    void says()
    {
        QFETCH(CurlFailure, failure);
        QFETCH(NetworkPresence, presence);
        QFETCH(QString, description);
        QCOMPARE(transportErrorDescription(transportErrorFrom(failure, presence)), description);
    }

    void hasOneShortSentenceForEveryErrorOfTheLibrary()
    {
        for (int code = 1; code < CURL_LAST; ++code) {
            for (const auto &proxyStatus : {std::optional<int>(), std::optional(0)}) {
                const CurlFailure failure{CURLcode(code), 0, proxyStatus};
                const QString description = transportErrorDescription(
                    transportErrorFrom(failure, NetworkPresence::Present));
                const QByteArray codeText = QByteArray::number(code);
                QVERIFY2(description.size() > 10 && description.size() < 80, codeText);
                QVERIFY2(description.count(u'.') == 1 && description.endsWith(u'.'), codeText);
                QVERIFY2(!description.contains(u'/'), codeText);
            }
        }
    }
};

QTEST_APPLESS_MAIN(TransportErrorTest)
#include "TransportErrorTest.moc"
