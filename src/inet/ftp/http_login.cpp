#include "inet/ftp/http_login.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <string_view>

namespace Ftp {

namespace {

using Parameters = std::map<std::string, std::string>;

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char byte) { return std::tolower(byte); });
    return text;
}

bool IsTokenByte(char byte)
{
    constexpr std::string_view Marks = "!#$%&'*+-.^_`|~";
    return std::isalnum(static_cast<unsigned char>(byte)) != 0 || Marks.find(byte) != std::string_view::npos;
}

bool HasControl(const std::string& text)
{
    return std::any_of(text.begin(), text.end(), [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; });
}

/// Reads one field value from its front.
class Reader {
public:
    explicit Reader(std::string_view text) : Left(text) {}

    bool AtEnd() const { return Left.empty(); }

    bool Skip(char byte)
    {
        if (!Left.starts_with(byte)) return false;
        Left.remove_prefix(1);
        return true;
    }

    void SkipBlanks()
    {
        while (Skip(' ') || Skip('\t')) {}
    }

    std::string Token()
    {
        const auto end = std::find_if_not(Left.begin(), Left.end(), IsTokenByte);
        std::string token(Left.begin(), end);
        Left.remove_prefix(token.size());
        return token;
    }

    std::string Value()
    {
        if (!Skip('"')) return Token();
        std::string value;
        while (!AtEnd() && !Skip('"')) {
            if (Left.size() > 1) Skip('\\');
            value += Left.front();
            Left.remove_prefix(1);
        }
        return value;
    }

    /// What a scheme may have in place of parameters: "Negotiate YII=".
    void SkipToken68()
    {
        const std::size_t letters =
            Left.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~+/");
        const std::size_t end = Left.find_first_not_of('=', std::min(letters, Left.size()));
        const std::size_t next = Left.find_first_not_of(" \t", std::min(end, Left.size()));
        if (next == std::string_view::npos || Left[next] == ',') Left.remove_prefix(std::min(end, Left.size()));
    }

    void SkipByte() { Left.remove_prefix(1); }

private:
    std::string_view Left;
};

void ReadChallenges(std::string_view text, std::vector<Challenge>& found)
{
    Reader reader(text);
    bool open = false;  // parameters belong to the challenge found last
    while (!reader.AtEnd()) {
        reader.SkipBlanks();
        if (reader.AtEnd()) return;
        if (reader.Skip(',')) continue;
        std::string word = reader.Token();
        reader.SkipBlanks();
        if (word.empty()) {
            reader.SkipByte();
        } else if (open && reader.Skip('=')) {
            reader.SkipBlanks();
            found.back().Parameters.emplace(Lower(std::move(word)), reader.Value());
        } else {
            found.push_back({std::move(word), {}});
            open = true;
            reader.SkipToken68();
        }
    }
}

std::string ValueOf(const Parameters& parameters, const std::string& name)
{
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::string() : found->second;
}

/// The methods of Digest, the stronger first; a server that names none means the last.
const std::array<std::pair<const char*, const EVP_MD* (*)()>, 3> Hashes{
    {{"sha-512-256", &EVP_sha512_256}, {"sha-256", &EVP_sha256}, {"md5", &EVP_md5}}};

/// Empty when the library cannot do it.
std::string HexHash(const EVP_MD* method, const std::string& text)
{
    constexpr std::string_view Digits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned size = 0;
    if (EVP_Digest(text.data(), text.size(), bytes.data(), &size, method, nullptr) != 1) return {};
    std::string hex;
    for (unsigned i = 0; i < size; ++i) {
        hex += Digits[bytes[i] >> 4];
        hex += Digits[bytes[i] & 0xF];
    }
    return hex;
}

std::string RandomNonce()
{
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), bytes.size()) != 1) return {};
    return HexHash(EVP_sha256(), std::string(bytes.begin(), bytes.end())).substr(0, 32);
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') quoted += '\\';
        quoted += byte;
    }
    return quoted + '"';
}

/// Whether "auth" is among the protections offered: "auth,auth-int".
bool OffersAuth(const std::string& protections)
{
    Reader reader(protections);
    while (!reader.AtEnd()) {
        const std::string word = Lower(reader.Token());
        if (word == "auth") return true;
        if (word.empty()) reader.SkipByte();
    }
    return false;
}

/// RFC 7616, 3.4; without a protection RFC 2069, 2.1.2. Nothing when the challenge asks for more than we know.
std::optional<std::string> AnswerBy(const EVP_MD* method, bool isSession, const Parameters& asked,
                                    const LoginWish& wish)
{
    const std::string realm = ValueOf(asked, "realm");
    const std::string nonce = ValueOf(asked, "nonce");
    const std::string opaque = ValueOf(asked, "opaque");
    const std::string mine = wish.Nonce.empty() ? RandomNonce() : wish.Nonce;
    const bool isProtected = asked.contains("qop");
    if (isProtected && !OffersAuth(asked.at("qop"))) return std::nullopt;
    if (nonce.empty() || mine.empty() || HasControl(realm + nonce + opaque + wish.User)) return std::nullopt;
    std::string secret = HexHash(method, wish.User + ':' + realm + ':' + wish.Password);
    if (isSession) secret = HexHash(method, secret + ':' + nonce + ':' + mine);
    const std::string request = HexHash(method, wish.Method + ':' + wish.Target);
    const std::string once = isProtected ? ":00000001:" + mine + ":auth:" : ":";
    const std::string response = HexHash(method, secret + ':' + nonce + once + request);
    if (response.empty()) return std::nullopt;
    std::string answer = "Digest username=" + Quoted(wish.User) + ", realm=" + Quoted(realm) +
                         ", nonce=" + Quoted(nonce) + ", uri=" + Quoted(wish.Target) + ", response=\"" + response + '"';
    if (asked.contains("algorithm")) answer += ", algorithm=" + asked.at("algorithm");
    if (asked.contains("opaque")) answer += ", opaque=" + Quoted(opaque);
    if (isProtected) answer += ", qop=auth, nc=00000001";
    if (isProtected || isSession) answer += ", cnonce=" + Quoted(mine);
    return answer;
}

std::string Base64(const std::string& bytes)
{
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int size =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

}  // namespace

std::vector<Challenge> ChallengesIn(const std::vector<std::string>& values)
{
    std::vector<Challenge> found;
    for (const std::string& value : values) ReadChallenges(value, found);
    return found;
}

std::optional<std::string> LoginFor(const std::vector<Challenge>& offered, const LoginWish& wish)
{
    for (const auto& [name, method] : Hashes) {
        for (const Challenge& one : offered) {
            if (Lower(one.Scheme) != "digest") continue;
            std::string algorithm = Lower(ValueOf(one.Parameters, "algorithm"));
            if (algorithm.empty()) algorithm = "md5";
            const bool isSession = algorithm.ends_with("-sess");
            if (isSession) algorithm.resize(algorithm.size() - std::string_view("-sess").size());
            if (algorithm != name) continue;
            if (std::optional<std::string> answer = AnswerBy(method(), isSession, one.Parameters, wish)) return answer;
        }
    }
    const bool byBasic =
        std::any_of(offered.begin(), offered.end(), [](const Challenge& one) { return Lower(one.Scheme) == "basic"; });
    if (byBasic) return BasicLogin(wish.User, wish.Password);
    return std::nullopt;
}

std::string BasicLogin(const std::string& user, const std::string& password)
{
    return "Basic " + Base64(user + ':' + password);
}

bool IsStale(const std::vector<Challenge>& offered)
{
    return std::any_of(offered.begin(), offered.end(), [](const Challenge& one) {
        return Lower(one.Scheme) == "digest" && Lower(ValueOf(one.Parameters, "stale")) == "true";
    });
}

std::string KindsOf(const std::vector<Challenge>& offered)
{
    std::string kinds;
    for (const Challenge& one : offered) kinds += (kinds.empty() ? "" : ", ") + one.Scheme;
    return kinds;
}

}  // namespace Ftp
