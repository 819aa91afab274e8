#include "support/tls_script.h"

#include <QByteArray>
#include <QtGlobal>
#include <algorithm>
#include <array>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/post.hpp>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

struct TestCertificates::Made {
    Made() : Key(EVP_EC_gen("P-256")), Shown(X509_new()) {}

    ~Made()
    {
        X509_free(Shown);
        EVP_PKEY_free(Key);
    }

    Made(const Made&) = delete;
    Made& operator=(const Made&) = delete;

    EVP_PKEY* Key;
    X509* Shown;
};

namespace {

constexpr long Day = 24L * 60 * 60;

struct Wish {
    const char* Name;
    const char* Host;
    long From;
    long Until;
};

void Extend(X509* certificate, X509* issuer, int what, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, what, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

void Fill(X509* certificate, EVP_PKEY* key, const Wish& wish, int number)
{
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), number);
    X509_gmtime_adj(X509_getm_notBefore(certificate), wish.From);
    X509_gmtime_adj(X509_getm_notAfter(certificate), wish.Until);
    X509_set_pubkey(certificate, key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(wish.Name), -1, -1, 0);
}

int NoteName(SSL* connection, int*, void* script)
{
    const char* name = SSL_get_servername(connection, TLSEXT_NAMETYPE_host_name);
    static_cast<TlsScript*>(script)->ServerName = name == nullptr ? "" : name;
    return SSL_TLSEXT_ERR_OK;
}

int NoteProtocols(SSL*, const unsigned char** chosen, unsigned char* size, const unsigned char* offered,
                  unsigned length, void* script)
{
    static_cast<TlsScript*>(script)->Protocols.assign(reinterpret_cast<const char*>(offered), length);
    *chosen = offered + 1;
    *size = offered[0];
    return SSL_TLSEXT_ERR_OK;
}

}  // namespace

TestCertificates::TestCertificates()
{
    const auto authority = std::make_shared<Made>();
    Fill(authority->Shown, authority->Key, {"Test authority", "", -Day, 100 * Day}, 1);
    X509_set_issuer_name(authority->Shown, X509_get_subject_name(authority->Shown));
    Extend(authority->Shown, authority->Shown, NID_basic_constraints, "critical,CA:TRUE");
    X509_sign(authority->Shown, authority->Key, EVP_sha256());

    int number = 1;
    for (const Wish& wish :
         {Wish{"good", "DNS:server.test", -Day, 10 * Day}, Wish{"other", "DNS:server.test", -Day, 10 * Day},
          Wish{"expired", "DNS:server.test", -3 * Day, -Day}, Wish{"not yet", "DNS:server.test", Day, 3 * Day},
          Wish{"wrong host", "DNS:another.test", -Day, 10 * Day}, Wish{"numbered", "IP:127.0.0.1", -Day, 10 * Day},
          Wish{"self-signed", "DNS:server.test", -Day, 10 * Day}}) {
        const auto made = std::make_shared<Made>();
        Fill(made->Shown, made->Key, wish, ++number);
        const Made& signer = std::string(wish.Name) == "self-signed" ? *made : *authority;
        X509_set_issuer_name(made->Shown, X509_get_subject_name(signer.Shown));
        Extend(made->Shown, signer.Shown, NID_subject_alt_name, wish.Host);
        X509_sign(made->Shown, signer.Key, EVP_sha256());
        All[wish.Name] = made;
    }

    const QByteArray path = Folder.filePath("authority.pem").toLocal8Bit();
    BIO* file = BIO_new_file(path.constData(), "w");
    PEM_write_bio_X509(file, authority->Shown);
    BIO_free(file);
    qputenv("SSL_CERT_FILE", path);
    qputenv("SSL_CERT_DIR", Folder.path().toLocal8Bit());
}

TestCertificates::~TestCertificates()
{
    qunsetenv("SSL_CERT_FILE");
    qunsetenv("SSL_CERT_DIR");
}

void TestCertificates::Use(ssl_ctx_st* server, const std::string& name) const
{
    const Made& made = *All.at(name);
    SSL_CTX_use_certificate(server, made.Shown);
    SSL_CTX_use_PrivateKey(server, made.Key);
}

struct TlsEnd : std::enable_shared_from_this<TlsEnd> {
    TlsEnd(SSL_CTX* settings, const asio::any_io_executor& executor, std::shared_ptr<MemoryLink> outer)
        : Where(executor), Outer(std::move(outer)), Inner(std::make_shared<MemoryLink>(executor)),
          Tls(SSL_new(settings)), In(BIO_new(BIO_s_mem())), Out(BIO_new(BIO_s_mem()))
    {
        SSL_set_bio(Tls, In, Out);
        SSL_set_accept_state(Tls);
        Inner->Address = Outer->Address;
    }

    ~TlsEnd() { SSL_free(Tls); }

    TlsEnd(const TlsEnd&) = delete;
    TlsEnd& operator=(const TlsEnd&) = delete;

    /// The client's side wakes us by its notes, the script's by waking the link that it sees.
    void Begin()
    {
        Told = Outer->Notified;
        Outer->Notified = [weak = weak_from_this()] {
            const auto self = weak.lock();
            if (!self) return;
            asio::post(self->Where, [self] { self->Pump(); });
        };
        const auto follow = [](std::shared_ptr<TlsEnd> self) -> Ftp::Task<> {
            while (!self->Outer->ClientGone) {
                self->Pump();
                co_await self->Inner->Changed.Wait();
            }
        };
        asio::co_spawn(Where, follow(shared_from_this()), asio::detached);
    }

    void Pump()
    {
        if (!Outer->ToServer.empty()) BIO_write(In, Outer->ToServer.data(), static_cast<int>(Outer->ToServer.size()));
        Outer->ToServer.clear();
        if (!IsDone) IsDone = SSL_do_handshake(Tls) == 1;
        std::array<char, 16384> buffer;
        for (int count = 1; IsDone && count > 0;) {
            count = SSL_read(Tls, buffer.data(), static_cast<int>(buffer.size()));
            if (count > 0) Inner->ToServer.append(buffer.data(), static_cast<std::size_t>(count));
        }
        if (Outer->ClientEnded && !Inner->ClientEnded) {
            Inner->ClientEnded = true;
            ClosedFirst = (SSL_get_shutdown(Tls) & SSL_RECEIVED_SHUTDOWN) != 0;
        }
        Inner->ClientGone = Outer->ClientGone;
        if (IsDone && !Inner->ToClient.empty()) {
            SSL_write(Tls, Inner->ToClient.data(), static_cast<int>(Inner->ToClient.size()));
            Inner->ToClient.clear();
        }
        const bool ends = Inner->ServerEnded && (IsDone || IsCut) && !Outer->ServerEnded;
        if (ends && !IsCut) SSL_shutdown(Tls);
        Send();
        if (ends) Outer->ServerEnded = true;
        Outer->Broken = Outer->Broken || Inner->Broken;
        Outer->Wake();
        Inner->Wake();
        if (Told) Told();
    }

    void Send()
    {
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(Out, &bytes);
        const std::size_t count = std::min(static_cast<std::size_t>(size), TearAfter);
        if (!Outer->ServerEnded) Outer->ToClient.append(bytes, count);
        if (count < static_cast<std::size_t>(size)) Outer->ServerEnded = true;
        if (TearAfter != SIZE_MAX) TearAfter -= count;
        (void)BIO_reset(Out);
    }

    asio::any_io_executor Where;
    std::shared_ptr<MemoryLink> Outer;  ///< the client's
    std::shared_ptr<MemoryLink> Inner;  ///< the script's
    SSL* Tls;
    BIO* In;
    BIO* Out;
    std::function<void()> Told;
    bool IsDone = false;
    bool IsCut = false;
    bool ClosedFirst = false;  ///< the client closed TLS before its side of the stream
    std::size_t TearAfter = SIZE_MAX;
};

TlsScript::TlsScript(Conversation& talk, const TestCertificates& certificates)
    : Talk(talk), Certificates(certificates), Settings(SSL_CTX_new(TLS_server_method()))
{
    SSL_CTX_set_security_level(Settings, 0);
    SSL_CTX_set_session_id_context(Settings, reinterpret_cast<const unsigned char*>("ftp"), 3);
    SSL_CTX_set_tlsext_servername_callback(Settings, &NoteName);
    SSL_CTX_set_tlsext_servername_arg(Settings, this);
    SSL_CTX_set_alpn_select_cb(Settings, &NoteProtocols, this);
    Certificates.Use(Settings, "good");
    Talk.Server.Extra = [this](const std::string& text, Link& control, Link& data) {
        return Obey(text, control, data);
    };
}

TlsScript::~TlsScript()
{
    Talk.Server.Extra = {};
    Control.reset();
    Data.reset();
    SSL_CTX_free(Settings);
}

void TlsScript::ForbidResumption()
{
    SSL_CTX_set_options(Settings, SSL_OP_NO_TICKET);
    SSL_CTX_set_session_cache_mode(Settings, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_num_tickets(Settings, 0);
}

bool TlsScript::Obey(const std::string& text, Link& control, Link& data)
{
    if (text.starts_with("certificate ")) {
        Certificates.Use(Settings, text.substr(12));
        return true;
    }
    if (text.starts_with("version ")) {
        LimitVersion(text.substr(8));
        return true;
    }
    if (text == "hello") return control && !control->ToServer.empty();
    if (text == "secure") {
        if (!control) return false;
        control = Secure(control, false);
        return true;
    }
    if (text == "secure data") {
        if (!data) return false;
        data = Secure(data, true);
        return true;
    }
    return ObeyEnd(text, control, data);
}

bool TlsScript::ObeyEnd(const std::string& text, Link& control, Link& data)
{
    if (text == "secured" || text == "resumed") {
        if (!Data || !Data->IsDone) return false;
        Resumptions.push_back(SSL_session_reused(Data->Tls) == 1);
        return text == "secured" || Resumptions.back();
    }
    if (text == "closed") return Data && Data->Inner->ClientEnded && Data->ClosedFirst;
    if (text == "open") return Data && !Data->Outer->ClientGone;
    if (text == "cut data" || text == "cut") {
        const std::shared_ptr<TlsEnd> end = text == "cut" ? Control : Data;
        end->IsCut = true;
        end->Inner->ServerEnded = true;
        end->Inner->Wake();
        return true;
    }
    if (text.starts_with("clear data ")) {
        data->ToClient += text.substr(11) + "\r\n";
        data->Wake();
        return true;
    }
    if (text.starts_with("clear ")) {
        const Link link = Control ? Control->Outer : control;
        link->ToClient += text.substr(6) + "\r\n";
        link->Wake();
        return true;
    }
    if (text.starts_with("tear ")) {
        Data->TearAfter = std::stoul(text.substr(5));
        return true;
    }
    return false;
}

TlsScript::Link TlsScript::Secure(const Link& link, bool isData)
{
    const auto end = std::make_shared<TlsEnd>(Settings, Talk.Context.get_executor(), link);
    (isData ? Data : Control) = end;
    end->Begin();
    return end->Inner;
}

void TlsScript::LimitVersion(const std::string& version) const
{
    static const std::map<std::string, int> Numbers = {
        {"1.1", TLS1_1_VERSION}, {"1.2", TLS1_2_VERSION}, {"1.3", TLS1_3_VERSION}};
    SSL_CTX_set_min_proto_version(Settings, Numbers.at(version));
    SSL_CTX_set_max_proto_version(Settings, Numbers.at(version));
}
