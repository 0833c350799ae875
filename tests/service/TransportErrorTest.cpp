#include "TransportError.h"

#include <QMetaEnum>
#include <QTest>

using namespace Qt::StringLiterals;

class TransportErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void says_data()
    {
        using Socket = QAbstractSocket;
        QTest::addColumn<QAbstractSocket::SocketError>("error");
        QTest::addColumn<NetworkPresence>("presence");
        QTest::addColumn<QString>("description");

        const QString refused = u"El servicio rechazó la conexión."_s;
        const QString hostNotFound = u"No se encontró el servicio."_s;
        const QString lost = u"Se perdió la conexión con el servicio."_s;
        const QString insecure = u"No se pudo establecer una conexión segura con el servicio."_s;
        const QString timedOut = u"El servicio tardó demasiado en responder."_s;
        const QString noNetwork = u"No hay conexión a Internet."_s;
        const QString other = u"No se pudo completar la comunicación con el servicio."_s;
        const auto present = NetworkPresence::Present;
        const auto absent = NetworkPresence::Absent;

        QTest::newRow("refused") << Socket::ConnectionRefusedError << present << refused;
        QTest::newRow("refused without network")
            << Socket::ConnectionRefusedError << absent << refused;
        QTest::newRow("host not found") << Socket::HostNotFoundError << present << hostNotFound;
        QTest::newRow("host not found without network")
            << Socket::HostNotFoundError << absent << noNetwork;
        QTest::newRow("closed") << Socket::RemoteHostClosedError << present << lost;
        QTest::newRow("unreachable") << Socket::NetworkError << present << lost;
        QTest::newRow("unreachable without network") << Socket::NetworkError << absent << noNetwork;
        QTest::newRow("handshake") << Socket::SslHandshakeFailedError << present << insecure;
        QTest::newRow("TLS library") << Socket::SslInternalError << present << insecure;
        QTest::newRow("TLS settings") << Socket::SslInvalidUserDataError << present << insecure;
        QTest::newRow("timed out") << Socket::SocketTimeoutError << present << timedOut;
        QTest::newRow("anything else") << Socket::SocketResourceError << present << other;
    }
    void says()
    {
        QFETCH(QAbstractSocket::SocketError, error);
        QFETCH(NetworkPresence, presence);
        QFETCH(QString, description);
        QCOMPARE(transportErrorDescription(transportErrorFrom(error, presence)), description);
    }

    void hasOneShortSentenceForEveryErrorOfTheToolkit()
    {
        const auto errors = QMetaEnum::fromType<QAbstractSocket::SocketError>();
        QVERIFY(errors.keyCount() > 15);
        for (int i = 0; i < errors.keyCount(); ++i) {
            const auto error = QAbstractSocket::SocketError(errors.value(i));
            const QString description
                = transportErrorDescription(transportErrorFrom(error, NetworkPresence::Present));
            QVERIFY2(description.size() > 10 && description.size() < 80, errors.key(i));
            QVERIFY2(description.count(u'.') == 1 && description.endsWith(u'.'), errors.key(i));
            QVERIFY2(!description.contains(u'/'), errors.key(i));
        }
    }
};

QTEST_APPLESS_MAIN(TransportErrorTest)
#include "TransportErrorTest.moc"
