#include "TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace {

using Key = std::shared_ptr<EVP_PKEY>;
using Certificate = std::shared_ptr<X509>;

constexpr long secondsPerHour = 3600;

struct CertificateRequest
{
    QByteArray subject;
    QByteArray alternativeName;
    QByteArray basicConstraints;
    Validity validity = Validity::Current;
};

Key makeKey()
{
    return {EVP_EC_gen("P-256"), EVP_PKEY_free};
}

void addExtension(X509 *certificate, int kind, const QByteArray &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

QByteArray alternativeName(const QByteArray &host)
{
    const std::shared_ptr<ASN1_OCTET_STRING> address(a2i_IPADDRESS(host.constData()),
                                                     ASN1_OCTET_STRING_free);
    return (address ? "IP:" : "DNS:") + host;
}

/// Signed by `issuerKey` in the name of `issuer`; of itself when `issuer` is null.
Certificate makeCertificate(const CertificateRequest &request, const Key &key, X509 *issuer,
                            const Key &issuerKey)
{
    static long serialNumber = 0;
    Certificate certificate(X509_new(), X509_free);
    X509 *x509 = certificate.get();
    X509_set_version(x509, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serialNumber);
    const bool isNotYet = request.validity == Validity::NotYet;
    const long begin = isNotYet ? secondsPerHour : -2 * secondsPerHour;
    const long end = request.validity == Validity::Expired ? -secondsPerHour : 2 * secondsPerHour;
    X509_gmtime_adj(X509_getm_notBefore(x509), begin);
    X509_gmtime_adj(X509_getm_notAfter(x509), end);
    X509_set_pubkey(x509, key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(request.subject.constData()),
                               -1, -1, 0);
    X509_set_issuer_name(x509, X509_get_subject_name(issuer ? issuer : x509));
    addExtension(x509, NID_basic_constraints, request.basicConstraints);
    if (!request.alternativeName.isEmpty())
        addExtension(x509, NID_subject_alt_name, request.alternativeName);
    X509_sign(x509, issuerKey.get(), EVP_sha256());
    return certificate;
}

template <typename Write>
QByteArray pem(Write write)
{
    BIO *memory = BIO_new(BIO_s_mem());
    write(memory);
    char *data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    QByteArray text(data, size);
    BIO_free(memory);
    return text;
}

QByteArray pemCertificate(X509 *certificate)
{
    return pem([certificate](BIO *memory) { PEM_write_bio_X509(memory, certificate); });
}

QByteArray pemKey(EVP_PKEY *key)
{
    return pem([key](BIO *memory) {
        PEM_write_bio_PrivateKey(memory, key, nullptr, nullptr, 0, nullptr, nullptr);
    });
}

/// Each authority has a name of its own, by which they are told apart.
int authorityCount = 0;

} // namespace

TestAuthority::TestAuthority()
    : m_key(makeKey())
    , m_certificate(
          makeCertificate({.subject = "Test authority " + QByteArray::number(++authorityCount),
                           .alternativeName = {},
                           .basicConstraints = "critical,CA:TRUE"},
                          m_key, nullptr, m_key))
{ }

QByteArray TestAuthority::certificate() const
{
    return pemCertificate(m_certificate.get());
}

ServerCredentials TestAuthority::issue(const QByteArray &host, Validity validity) const
{
    const Key key = makeKey();
    const Certificate certificate = makeCertificate({.subject = host,
                                                     .alternativeName = alternativeName(host),
                                                     .basicConstraints = "CA:FALSE",
                                                     .validity = validity},
                                                    key, m_certificate.get(), m_key);
    return {.certificate = pemCertificate(certificate.get()), .key = pemKey(key.get())};
}

ServerCredentials selfSignedCredentials(const QByteArray &host)
{
    const Key key = makeKey();
    const Certificate certificate = makeCertificate({.subject = host,
                                                     .alternativeName = alternativeName(host),
                                                     .basicConstraints = "critical,CA:TRUE"},
                                                    key, nullptr, key);
    return {.certificate = pemCertificate(certificate.get()), .key = pemKey(key.get())};
}
