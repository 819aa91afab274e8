#include "support/http_certificate.h"

#include <QHostAddress>
#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace {

constexpr long SecondsADay = 24 * 60 * 60;

template <typename Write>
QByteArray PemOf(Write write)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
    write(memory.get());
    const char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, size};
}

void AddName(X509* certificate, const QString& host)
{
    const bool isNumber = !QHostAddress(host).isNull();
    const QByteArray text = (isNumber ? "IP:" : "DNS:") + host.toLatin1();
    X509_EXTENSION* names = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, text.constData());
    X509_add_ext(certificate, names, -1);
    X509_EXTENSION_free(names);
}

}  // namespace

HttpCertificate HttpCertificate::For(const QString& host, int firstDay, int lastDay)
{
    static int serial = 0;
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> made(X509_new(), X509_free);
    X509* certificate = made.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate), firstDay * SecondsADay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), lastDay * SecondsADay);
    const QByteArray name = host.toLatin1();
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.constData()), -1, -1, 0);
    X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
    X509_set_pubkey(certificate, key.get());
    AddName(certificate, host);
    X509_sign(certificate, key.get(), EVP_sha256());
    const QByteArray keyText =
        PemOf([&](BIO* out) { PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
    const QByteArray text = PemOf([&](BIO* out) { PEM_write_bio_X509(out, certificate); });
    return {QSslCertificate(text), QSslKey(keyText, QSsl::Ec)};
}
