#pragma once

#include "inet/ftp/failure.h"

#include <cstdint>
#include <string>
#include <vector>

struct x509_st;

namespace Ftp {

/// A server's certificate as its reader sees it. The texts hold what the server put into it: UTF-8, one line each,
/// control characters escaped, of a bounded length.
struct Certificate {
    std::string Host;  ///< as it was asked for
    std::uint16_t Port = 0;
    std::string Subject;
    std::string Issuer;
    std::string ValidFrom;    ///< "2024-03-09 17:05:08 UTC"
    std::string ValidUntil;   ///< the same
    std::string Fingerprint;  ///< SHA-256 of the whole, "AB:CD:...", 32 bytes
    std::vector<int> Errors;  ///< what OpenSSL's check objects to (X509_V_ERR_*); empty: it is trusted

    bool IsTrusted() const { return Errors.empty(); }
};

/// The facts of a certificate; Host, Port and Errors are left to the caller.
[[nodiscard]] Certificate FactsOf(x509_st* certificate);

/// Why it is not trusted: "it has expired, and it was made for another host".
[[nodiscard]] std::string DoubtsOf(const Certificate& certificate);

/// The failure that an untrusted certificate stands for.
[[nodiscard]] Failure DistrustOf(const Certificate& certificate);

}  // namespace Ftp
