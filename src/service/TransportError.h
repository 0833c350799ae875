#pragma once

#include <QString>

#include <curl/curl.h>
#include <optional>

/// Why bytes did not get to the service or back.
enum class TransportError {
    ConnectionRefused,
    HostNotFound,
    ConnectionLost,
    SecureConnectionFailed,
    TimedOut,
    NoNetwork,
    ProxyRefused,
    ProxyNotFound,
    ProxyNeedsPassword,
    ProxyTimedOut,
    Other,
};

/// Whether this machine is on any network but its own.
enum class NetworkPresence {
    Absent, ///< no interface but the loopback one is up
    Present,
};

/// How libcurl ended a transfer without a reply that can be read.
struct CurlFailure
{
    CURLcode code = CURLE_OK;
    /// The last `errno` of connecting.
    int systemError = 0;
    /// The status of a proxy that has not opened the way to the service, 0 before it answers;
    /// nothing without such a proxy.
    std::optional<int> proxyStatus = std::nullopt;
};

/// What the machine's network interfaces say now. Sends nothing.
NetworkPresence currentNetworkPresence();

/// The error that `failure` stands for. Without a network, an unknown name or an unreachable
/// address means that there is no network.
TransportError transportErrorFrom(const CurlFailure &failure, NetworkPresence presence);

/// One Spanish sentence for the user: libcurl's own texts are English and quote the address.
QString transportErrorDescription(TransportError error);
