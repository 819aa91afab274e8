#include "support/http_certificate.h"

#include <QFile>
#include <QHostAddress>
#include <memory>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace {

constexpr long SecondsADay = 24 * 60 * 60;

struct Freeing {
    void operator()(X509* certificate) const { X509_free(certificate); }

    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }

    void operator()(BIO* memory) const { BIO_free(memory); }
};

using OwnedCertificate = std::unique_ptr<X509, Freeing>;
using OwnedKey = std::unique_ptr<EVP_PKEY, Freeing>;
using OwnedMemory = std::unique_ptr<BIO, Freeing>;

template <typename Write>
QByteArray PemOf(Write write)
{
    const OwnedMemory memory(BIO_new(BIO_s_mem()));
    write(memory.get());
    const char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, size};
}

OwnedCertificate ReadCertificate(const QByteArray& pem)
{
    const OwnedMemory memory(BIO_new_mem_buf(pem.constData(), static_cast<int>(pem.size())));
    return OwnedCertificate(PEM_read_bio_X509(memory.get(), nullptr, nullptr, nullptr));
}

OwnedKey ReadKey(const QByteArray& pem)
{
    const OwnedMemory memory(BIO_new_mem_buf(pem.constData(), static_cast<int>(pem.size())));
    return OwnedKey(PEM_read_bio_PrivateKey(memory.get(), nullptr, nullptr, nullptr));
}

void AddExtension(X509* certificate, int kind, const QByteArray& text)
{
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, text.constData());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

}  // namespace

HttpCertificate HttpCertificate::For(const QString& host, int firstDay, int lastDay, const HttpCertificate* authority)
{
    static int serial = 0;
    const OwnedKey key(EVP_EC_gen("P-256"));
    const OwnedCertificate made(X509_new());
    X509* certificate = made.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(certificate), firstDay * SecondsADay);
    X509_gmtime_adj(X509_getm_notAfter(certificate), lastDay * SecondsADay);
    const QByteArray name = host.toLatin1();
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.constData()), -1, -1, 0);
    const OwnedCertificate issuer = authority ? ReadCertificate(authority->Certificate.toPem()) : OwnedCertificate();
    const OwnedKey signer = authority ? ReadKey(authority->Key) : OwnedKey();
    X509_set_issuer_name(certificate, X509_get_subject_name(issuer ? issuer.get() : certificate));
    X509_set_pubkey(certificate, key.get());
    const bool isNumber = !QHostAddress(host).isNull();
    AddExtension(certificate, NID_subject_alt_name, (isNumber ? "IP:" : "DNS:") + name);
    AddExtension(certificate, NID_basic_constraints, authority ? "CA:FALSE" : "CA:TRUE");
    X509_sign(certificate, signer ? signer.get() : key.get(), EVP_sha256());
    const QByteArray keyText =
        PemOf([&](BIO* out) { PEM_write_bio_PrivateKey(out, key.get(), nullptr, nullptr, 0, nullptr, nullptr); });
    const QByteArray text = PemOf([&](BIO* out) { PEM_write_bio_X509(out, certificate); });
    return {QSslCertificate(text), keyText};
}

TrustedCertificates::TrustedCertificates()
{
    qputenv("SSL_CERT_FILE", Folder.filePath("trusted.pem").toLocal8Bit());
    qputenv("SSL_CERT_DIR", Folder.path().toLocal8Bit());
}

TrustedCertificates::TrustedCertificates(const HttpCertificate& certificate) : TrustedCertificates()
{
    Add(certificate);
}

TrustedCertificates::~TrustedCertificates()
{
    qunsetenv("SSL_CERT_FILE");
    qunsetenv("SSL_CERT_DIR");
}

void TrustedCertificates::Add(const HttpCertificate& certificate)
{
    QFile file(Folder.filePath("trusted.pem"));
    if (!file.open(QIODevice::Append) || file.write(certificate.Certificate.toPem()) <= 0)
        qFatal("no file for certificates");
}
