#include "TransportError.h"

#include <QNetworkInterface>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

TransportError connectErrorFrom(int systemError, NetworkPresence presence)
{
    switch (systemError) {
    case ECONNREFUSED:
        return TransportError::ConnectionRefused;
    case ETIMEDOUT:
        return TransportError::TimedOut;
    default:
        return presence == NetworkPresence::Absent ? TransportError::NoNetwork
                                                   : TransportError::ConnectionLost;
    }
}

TransportError proxyErrorFrom(int statusCode)
{
    constexpr int proxyAuthenticationRequired = 407;
    return statusCode == proxyAuthenticationRequired ? TransportError::ProxyNeedsPassword
                                                     : TransportError::ProxyRefused;
}

} // namespace

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

TransportError transportErrorFrom(const CurlFailure &failure, NetworkPresence presence)
{
    const bool hasNetwork = presence == NetworkPresence::Present;
    switch (failure.code) {
    case CURLE_COULDNT_RESOLVE_PROXY:
        return hasNetwork ? TransportError::ProxyNotFound : TransportError::NoNetwork;
    case CURLE_COULDNT_RESOLVE_HOST:
        return hasNetwork ? TransportError::HostNotFound : TransportError::NoNetwork;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
        return TransportError::SecureConnectionFailed;
    case CURLE_OPERATION_TIMEDOUT:
        return failure.proxyStatus ? TransportError::ProxyTimedOut : TransportError::TimedOut;
    default:
        break;
    }
    if (failure.proxyStatus)
        return proxyErrorFrom(*failure.proxyStatus);
    switch (failure.code) {
    case CURLE_COULDNT_CONNECT:
        return connectErrorFrom(failure.systemError, presence);
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_SEND_FAIL_REWIND:
        return TransportError::ConnectionLost;
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
    case TransportError::ProxyRefused:
        return u"El proxy de la red rechazó la conexión."_s;
    case TransportError::ProxyNotFound:
        return u"No se encontró el proxy de la red."_s;
    case TransportError::ProxyNeedsPassword:
        return u"El proxy de la red pide una contraseña."_s;
    case TransportError::ProxyTimedOut:
        return u"El proxy de la red tardó demasiado en responder."_s;
    case TransportError::Other:
        return u"No se pudo completar la comunicación con el servicio."_s;
    }
    Q_UNREACHABLE();
}
