#pragma once

#include <QAbstractSocket>
#include <QString>

/// Why bytes did not get to the service or back.
enum class TransportError {
    ConnectionRefused,
    HostNotFound,
    ConnectionLost,
    SecureConnectionFailed,
    TimedOut,
    NoNetwork,
    Other,
};

/// Whether this machine is on any network but its own.
enum class NetworkPresence {
    Absent, ///< no interface but the loopback one is up
    Present,
};

/// What the machine's network interfaces say now. Sends nothing.
NetworkPresence currentNetworkPresence();

/// What the toolkit's `error` means here. Without a network every name is unknown and every
/// address unreachable, so those are then told as what they are.
TransportError transportErrorFrom(QAbstractSocket::SocketError error, NetworkPresence presence);

/// One Spanish sentence for the user: the toolkit's own texts are English and quote the address.
QString transportErrorDescription(TransportError error);
