#include "inet/ftp/tls_certificate.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>
#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

namespace Ftp {

namespace {

constexpr std::size_t MaxNameBytes = 300;

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

std::string TextOf(const X509_NAME* name)
{
    const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
    constexpr unsigned long Form = XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB & ~XN_FLAG_SPC_EQ;
    if (!memory || name == nullptr || X509_NAME_print_ex(memory.get(), name, 0, Form) < 0) return {};
    char* bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    std::string text(bytes, static_cast<std::size_t>(std::max(size, 0L)));
    if (text.size() <= MaxNameBytes) return text;
    std::size_t end = MaxNameBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // not within a character
    return text.substr(0, end) + "...";
}

std::string TextOf(const ASN1_TIME* time)
{
    std::tm parts{};
    if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) return "unknown";
    std::array<char, 40> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
    return {text.data(), size};
}

std::string FingerprintOf(const X509* certificate)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (X509_digest(certificate, EVP_sha256(), digest.data(), &size) != 1) return {};
    constexpr const char* Digits = "0123456789ABCDEF";
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        if (i > 0) text += ':';
        text += Digits[digest[i] >> 4];
        text += Digits[digest[i] & 15];
    }
    return text;
}

struct Doubt {
    int Code;
    std::string Text;
};

Doubt DoubtOf(int error)
{
    switch (error) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return {CertificateDateError, "it has expired"};
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return {CertificateDateError, "it is not valid yet"};
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return {CertificateNameError, "it was made for another host"};
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        return {CertificateAuthorityError, "it is signed by nobody but itself"};
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
        return {CertificateAuthorityError, "it is signed by nobody whom this computer trusts"};
    default:
        return {CertificateError, std::string("the check says \"") + X509_verify_cert_error_string(error) + '"'};
    }
}

}  // namespace

Certificate FactsOf(x509_st* certificate)
{
    Certificate facts;
    facts.Subject = TextOf(X509_get_subject_name(certificate));
    facts.Issuer = TextOf(X509_get_issuer_name(certificate));
    facts.ValidFrom = TextOf(X509_get0_notBefore(certificate));
    facts.ValidUntil = TextOf(X509_get0_notAfter(certificate));
    facts.Fingerprint = FingerprintOf(certificate);
    return facts;
}

std::string DoubtsOf(const Certificate& certificate)
{
    std::vector<std::string> doubts;
    for (const int error : certificate.Errors) {
        std::string text = DoubtOf(error).Text;
        if (std::find(doubts.begin(), doubts.end(), text) == doubts.end()) doubts.push_back(std::move(text));
    }
    std::string all;
    for (std::size_t i = 0; i < doubts.size(); ++i) {
        if (i > 0) all += i + 1 == doubts.size() ? ", and " : ", ";
        all += doubts[i];
    }
    return all;
}

Failure DistrustOf(const Certificate& certificate)
{
    const int code = certificate.Errors.empty() ? CertificateError : DoubtOf(certificate.Errors.front()).Code;
    return {Failure::Protocol, code, "The server's certificate is not trusted: " + DoubtsOf(certificate) + '.'};
}

}  // namespace Ftp
