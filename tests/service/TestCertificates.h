#pragma once

#include <QByteArray>

#include <memory>

struct evp_pkey_st;
struct x509_st;

/// What a TLS server shows its clients: a certificate and its key, both PEM.
struct ServerCredentials
{
    QByteArray certificate;
    QByteArray key;
};

enum class Validity {
    Current,
    Expired, ///< ended an hour ago
    NotYet, ///< begins in an hour
};

/// A certificate authority of this test run only.
class TestAuthority
{
public:
    TestAuthority();

    /// The authority's own certificate, PEM.
    QByteArray certificate() const;

    /// `host` is a name or an address.
    ServerCredentials issue(const QByteArray &host, Validity validity = Validity::Current) const;

private:
    std::shared_ptr<evp_pkey_st> m_key;
    std::shared_ptr<x509_st> m_certificate;
};

/// A self-signed certificate for `host`, like the one made at build time.
ServerCredentials selfSignedCredentials(const QByteArray &host);
