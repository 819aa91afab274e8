#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ftp {

/// One way to log in that a server of HTTP, or a proxy, offers (RFC 9110, 11).
struct Challenge {
    std::string Scheme;                             ///< "Digest", as it was written
    std::map<std::string, std::string> Parameters;  ///< the names in lower case, the values without their quotes
};

/// Who logs in, and for which request.
struct LoginWish {
    std::string User;
    std::string Password;
    std::string Target;  ///< as it stands in the request
    std::string Method = "GET";
    std::string Nonce{};  ///< of this side, for Digest; empty: a random one
};

/// The ways that the values of WWW-Authenticate or Proxy-Authenticate offer, in order. What is no such list is left
/// out.
[[nodiscard]] std::vector<Challenge> ChallengesIn(const std::vector<std::string>& values);

/// The value of Authorization or Proxy-Authorization: by the strongest Digest (RFC 7616) that is offered, else by Basic
/// (RFC 7617). Nothing when neither is offered. No other kind is ever answered: NTLM and Negotiate would log in whoever
/// uses this computer.
[[nodiscard]] std::optional<std::string> LoginFor(const std::vector<Challenge>& offered, const LoginWish& wish);

/// The same by Basic, where nobody has asked yet.
[[nodiscard]] std::string BasicLogin(const std::string& user, const std::string& password);

/// Whether an answer by Digest was good but for its nonce, which had become too old.
[[nodiscard]] bool IsStale(const std::vector<Challenge>& offered);

/// "NTLM, Negotiate"
[[nodiscard]] std::string KindsOf(const std::vector<Challenge>& offered);

}  // namespace Ftp
