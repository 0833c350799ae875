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
        using Reply = QNetworkReply;
        QTest::addColumn<QNetworkReply::NetworkError>("error");
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

        QTest::newRow("refused") << Reply::ConnectionRefusedError << present << refused;
        QTest::newRow("refused without network")
            << Reply::ConnectionRefusedError << absent << refused;
        QTest::newRow("host not found") << Reply::HostNotFoundError << present << hostNotFound;
        QTest::newRow("host not found without network")
            << Reply::HostNotFoundError << absent << noNetwork;
        QTest::newRow("connection lost") << Reply::RemoteHostClosedError << present << lost;
        QTest::newRow("insecure") << Reply::SslHandshakeFailedError << present << insecure;
        QTest::newRow("timed out") << Reply::TimeoutError << present << timedOut;
        QTest::newRow("network went away")
            << Reply::TemporaryNetworkFailureError << present << noNetwork;
        QTest::newRow("network session ended")
            << Reply::NetworkSessionFailedError << present << noNetwork;
        QTest::newRow("unreachable") << Reply::UnknownNetworkError << present << other;
        QTest::newRow("unreachable without network")
            << Reply::UnknownNetworkError << absent << noNetwork;
        QTest::newRow("anything else") << Reply::ProxyNotFoundError << present << other;
    }
    void says()
    {
        QFETCH(QNetworkReply::NetworkError, error);
        QFETCH(NetworkPresence, presence);
        QFETCH(QString, description);
        QCOMPARE(transportErrorDescription(transportErrorFrom(error, presence)), description);
    }

    void saysTooLong()
    {
        QCOMPARE(transportErrorDescription(TransportError::ReplyTooLong),
                 u"La respuesta del servicio es demasiado larga."_s);
    }

    void hasOneShortSentenceForEveryErrorOfTheToolkit()
    {
        const auto errors = QMetaEnum::fromType<QNetworkReply::NetworkError>();
        QVERIFY(errors.keyCount() > 20);
        for (int i = 0; i < errors.keyCount(); ++i) {
            const auto error = QNetworkReply::NetworkError(errors.value(i));
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
