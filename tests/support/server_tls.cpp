#include "support/server_tls.h"

#include <array>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>

namespace {

X509* ReadCertificate(const QByteArray& pem)
{
    BIO* memory = BIO_new_mem_buf(pem.constData(), static_cast<int>(pem.size()));
    X509* certificate = PEM_read_bio_X509(memory, nullptr, nullptr, nullptr);
    BIO_free(memory);
    return certificate;
}

}  // namespace

struct ServerTls::State {
    State() : Settings(SSL_CTX_new(TLS_server_method())), In(BIO_new(BIO_s_mem())), Out(BIO_new(BIO_s_mem())) {}

    ~State()
    {
        SSL_free(Tls);
        SSL_CTX_free(Settings);
    }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    SSL_CTX* Settings;
    BIO* In;
    BIO* Out;
    SSL* Tls = nullptr;  ///< owns In and Out
    bool Failed = false;
};

ServerTls::ServerTls(const HttpCertificate& certificate) : It(std::make_unique<State>())
{
    X509* made = ReadCertificate(certificate.Certificate.toPem());
    SSL_CTX_use_certificate(It->Settings, made);
    X509_free(made);
    BIO* kept = BIO_new_mem_buf(certificate.Key.constData(), static_cast<int>(certificate.Key.size()));
    EVP_PKEY* key = PEM_read_bio_PrivateKey(kept, nullptr, nullptr, nullptr);
    SSL_CTX_use_PrivateKey(It->Settings, key);
    EVP_PKEY_free(key);
    BIO_free(kept);
    It->Tls = SSL_new(It->Settings);
    SSL_set_bio(It->Tls, It->In, It->Out);
    SSL_set_accept_state(It->Tls);
}

ServerTls::~ServerTls() = default;

QByteArray ServerTls::Take(const QByteArray& bytes)
{
    ERR_clear_error();
    BIO_write(It->In, bytes.constData(), static_cast<int>(bytes.size()));
    QByteArray text;
    std::array<char, 16384> buffer;
    int count = 1;
    while (count > 0) {
        count = SSL_read(It->Tls, buffer.data(), static_cast<int>(buffer.size()));
        if (count > 0) text.append(buffer.data(), count);
    }
    const int why = SSL_get_error(It->Tls, count);
    It->Failed = It->Failed || why == SSL_ERROR_SSL || why == SSL_ERROR_SYSCALL;
    return text;
}

void ServerTls::Put(const QByteArray& text)
{
    if (!text.isEmpty()) SSL_write(It->Tls, text.constData(), static_cast<int>(text.size()));
}

void ServerTls::End()
{
    SSL_shutdown(It->Tls);
}

QByteArray ServerTls::Outgoing()
{
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(It->Out, &bytes);
    QByteArray out(bytes, size);
    (void)BIO_reset(It->Out);
    return out;
}

bool ServerTls::HasFailed() const
{
    return It->Failed;
}
