#include "inet/http_trust.h"

#include <memory>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

namespace {

constexpr int SecureHttpPort = 443;

using HeldCertificate = std::unique_ptr<X509, decltype(&X509_free)>;

/// Of an authority that is not trusted, where the check says no more: the check of Windows knows no self-signed ones.
int UntrustedError(X509* certificate)
{
    return certificate != nullptr && X509_check_issued(certificate, certificate) == X509_V_OK
               ? X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT
               : X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY;
}

int ErrorOf(QSslError::SslError error, X509* certificate)
{
    switch (error) {
    case QSslError::CertificateExpired:
        return X509_V_ERR_CERT_HAS_EXPIRED;
    case QSslError::CertificateNotYetValid:
        return X509_V_ERR_CERT_NOT_YET_VALID;
    case QSslError::HostNameMismatch:
        return X509_V_ERR_HOSTNAME_MISMATCH;
    case QSslError::SelfSignedCertificate:
        return X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT;
    case QSslError::SelfSignedCertificateInChain:
        return X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN;
    case QSslError::UnableToGetIssuerCertificate:
        return X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT;
    case QSslError::UnableToGetLocalIssuerCertificate:
        return X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY;
    case QSslError::UnableToVerifyFirstCertificate:
        return X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE;
    case QSslError::CertificateRevoked:
    case QSslError::CertificateBlacklisted:
        return X509_V_ERR_CERT_REVOKED;
    case QSslError::CertificateRejected:
        return X509_V_ERR_CERT_REJECTED;
    case QSslError::CertificateUntrusted:
        return UntrustedError(certificate);
    case QSslError::InvalidPurpose:
        return X509_V_ERR_INVALID_PURPOSE;
    case QSslError::InvalidCaCertificate:
        return X509_V_ERR_INVALID_CA;
    case QSslError::CertificateSignatureFailed:
        return X509_V_ERR_CERT_SIGNATURE_FAILURE;
    default:
        return X509_V_ERR_CERT_UNTRUSTED;
    }
}

}  // namespace

Ftp::Certificate ShownCertificate(const QUrl& url, const QSslCertificate& certificate, const QList<QSslError>& errors)
{
    const QByteArray bytes = certificate.toDer();
    const auto* begin = reinterpret_cast<const unsigned char*>(bytes.constData());
    const HeldCertificate held(d2i_X509(nullptr, &begin, static_cast<long>(bytes.size())), &X509_free);
    Ftp::Certificate shown = held ? Ftp::FactsOf(held.get()) : Ftp::Certificate();
    shown.Host = url.host(QUrl::FullyEncoded).toStdString();
    shown.Port = static_cast<std::uint16_t>(url.port(SecureHttpPort));
    for (const QSslError& one : errors) shown.Errors.push_back(ErrorOf(one.error(), held.get()));
    if (shown.Errors.empty()) shown.Errors.push_back(X509_V_ERR_CERT_UNTRUSTED);
    return shown;
}
