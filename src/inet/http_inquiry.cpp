#include "inet/http_inquiry.h"

#include "inet/proxy_system.h"

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <mutex>
#include <thread>
#include <utility>

/// What the asking thread and the one that waits share; the former must touch nothing else once nobody waits.
struct HttpInquiry::Shared {
    std::mutex Lock;
    HttpInquiry* Receiver = nullptr;
};

namespace {

constexpr int HttpPort = 80;
constexpr int SecureHttpPort = 443;

HttpInquiry::Answer Ask(const std::string& scheme, const std::string& host, std::uint16_t port, Ftp::Proxy via)
{
    if (via.Kind == Ftp::Proxy::System) via = SystemProxy(scheme, host, port);
    const bool straight = via.Kind == Ftp::Proxy::None;
    asio::io_context own;
    asio::ip::tcp::resolver resolver(own);
    asio::error_code error;
    const auto found = resolver.resolve(straight ? host : via.Host, std::to_string(straight ? port : via.Port), error);
    HttpInquiry::Answer answer{std::move(via), {}};
    if (error || found.empty()) answer.Failed = error ? error.message() : "no address";
    return answer;
}

}  // namespace

HttpInquiry::HttpInquiry(const QUrl& url, Ftp::Proxy via, std::function<void(const Answer&)> answered)
    : Asked(std::make_shared<Shared>()), Answered(std::move(answered))
{
    Asked->Receiver = this;
    const std::string scheme = url.scheme().toStdString();
    const std::string host = url.host(QUrl::FullyEncoded).toStdString();
    const auto port = static_cast<std::uint16_t>(url.port(scheme == "https" ? SecureHttpPort : HttpPort));
    std::thread([asked = Asked, scheme, host, port, way = std::move(via)] {
        const Answer answer = Ask(scheme, host, port, way);
        const std::lock_guard guard(asked->Lock);
        HttpInquiry* receiver = asked->Receiver;
        if (!receiver) return;
        const auto tell = [receiver, answer] {
            // Who is told may let the inquiry go.
            const auto call = std::exchange(receiver->Answered, {});
            call(answer);
        };
        QMetaObject::invokeMethod(receiver, tell, Qt::QueuedConnection);
    }).detach();
}

HttpInquiry::~HttpInquiry()
{
    const std::lock_guard guard(Asked->Lock);
    Asked->Receiver = nullptr;
}
