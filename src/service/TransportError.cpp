#include "TransportError.h"

#include <QNetworkInterface>

#include <algorithm>

using namespace Qt::StringLiterals;

NetworkPresence currentNetworkPresence()
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    const bool hasNetwork = std::any_of(
        interfaces.cbegin(), interfaces.cend(), [](const QNetworkInterface &interface) {
            const QNetworkInterface::InterfaceFlags flags = interface.flags();
            return flags.testFlag(QNetworkInterface::IsRunning)
                && !flags.testFlag(QNetworkInterface::IsLoopBack);
        });
    return hasNetwork ? NetworkPresence::Present : NetworkPresence::Absent;
}

TransportError transportErrorFrom(QAbstractSocket::SocketError error, NetworkPresence presence)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return TransportError::ConnectionRefused;
    case QAbstractSocket::RemoteHostClosedError:
        return TransportError::ConnectionLost;
    case QAbstractSocket::SslHandshakeFailedError:
    case QAbstractSocket::SslInternalError:
    case QAbstractSocket::SslInvalidUserDataError:
        return TransportError::SecureConnectionFailed;
    case QAbstractSocket::SocketTimeoutError:
        return TransportError::TimedOut;
    case QAbstractSocket::HostNotFoundError:
        return presence == NetworkPresence::Absent ? TransportError::NoNetwork
                                                   : TransportError::HostNotFound;
    case QAbstractSocket::NetworkError:
        return presence == NetworkPresence::Absent ? TransportError::NoNetwork
                                                   : TransportError::ConnectionLost;
    default:
        return TransportError::Other;
    }
}

QString transportErrorDescription(TransportError error)
{
    switch (error) {
    case TransportError::ConnectionRefused:
        return u"El servicio rechazó la conexión."_s;
    case TransportError::HostNotFound:
        return u"No se encontró el servicio."_s;
    case TransportError::ConnectionLost:
        return u"Se perdió la conexión con el servicio."_s;
    case TransportError::SecureConnectionFailed:
        return u"No se pudo establecer una conexión segura con el servicio."_s;
    case TransportError::TimedOut:
        return u"El servicio tardó demasiado en responder."_s;
    case TransportError::NoNetwork:
        return u"No hay conexión a Internet."_s;
    case TransportError::Other:
        return u"No se pudo completar la comunicación con el servicio."_s;
    }
    Q_UNREACHABLE();
}
