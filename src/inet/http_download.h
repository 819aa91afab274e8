#pragma once

#include "inet/ftp/guard.h"
#include "inet/ftp/http_login.h"
#include "inet/ftp/session.h"
#include "inet/ftp/tls_session.h"
#include "inet/ftp/tunnel_network.h"
#include "inet/http_reader.h"

#include <QUrl>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What is to be fetched, and how.
struct HttpRequest {
    QUrl Url;              ///< without user and password
    std::string User;      ///< empty: nobody in particular
    std::string Password;  ///< sent, like the user, to the scheme, host and port of Url and nowhere else
    Ftp::Proxy Via;        ///< for every connection of the request
    Ftp::Milliseconds Limit = std::chrono::seconds(30);  ///< bounds every wait for progress
    std::filesystem::path File;                          ///< where the bytes go; empty: into the outcome's reply
};

/// Downloads by HTTP and secure HTTP (RFC 9110, RFC 9112): one GET, with the redirects and questions for a log-in that
/// it leads to, each on a connection of its own. One download at a time; transfer thread only.
class HttpDownload {
public:
    /// Asks how the system is set up to reach a host by this scheme; may take long, and is called on other threads.
    using SystemProxy = std::function<Ftp::Proxy(std::string scheme, std::string host, std::uint16_t port)>;

    HttpDownload(Ftp::Network& network, Ftp::Clock& clock, SystemProxy ask, Ftp::Observer observer);
    ~HttpDownload();

    /// Fetches to the end. The bytes go to the file as they come, and no faster than the disk takes them. Never throws.
    Ftp::Task<Ftp::Outcome> Fetch(HttpRequest request);

    /// Ends the running download, or the one that is about to begin; its Fetch returns soon.
    void Cancel() { Why.Cancel(); }

    /// The user's answer to the question of this number.
    void Answer(unsigned number, bool accepted);

    /// The running download has been connected.
    bool IsConnected() const;

private:
    /// The right to be let in at one place, the server or the proxy.
    struct Credentials {
        std::string Value{};    ///< of the field that the request carries; empty: none
        bool Answered = false;  ///< a question has been answered
        bool Renewed = false;   ///< the answer was good but too old, and has been given anew
    };

    Ftp::Task<Ftp::Outcome> Run();
    Ftp::Task<HttpHead> Ask();
    Ftp::Task<std::vector<Ftp::Endpoint>> LookUp();
    Ftp::Task<> Connect(std::vector<Ftp::Endpoint> endpoints);
    Ftp::Task<HttpHead> Exchange();
    Ftp::Task<Ftp::Outcome> Receive(HttpHead head);
    std::string RequestText() const;
    bool FollowsRedirect(const HttpHead& head);
    bool LogsIn(const HttpHead& head);
    bool AnswerTo(const std::vector<std::string>& asked, Ftp::LoginWish wish, Credentials& credentials) const;
    Ftp::Failure RefusalOf(const HttpHead& head) const;
    void BeginRequest(const QUrl& url);
    bool IsRelayed() const;
    std::string Target() const;
    void Tell(int state);
    void Rest();

    Ftp::Network& Net;
    Ftp::Clock& Time;
    SystemProxy AskSystem;
    Ftp::Observer Listener;
    Ftp::Intent Why;

    HttpRequest Wanted;
    QUrl Url;                                  ///< of the request that runs: the wanted one, or what it led to
    std::unique_ptr<Ftp::TunnelNetwork> Road;  ///< of that request
    std::unique_ptr<Ftp::TlsSession> Safe;     ///< with the server of that request
    std::shared_ptr<Ftp::Wire> Connection;
    std::unique_ptr<HttpReader> Reader;
    Credentials ForServer;
    Credentials ForProxy;
    int Redirects = 0;
    int Told = 0;  ///< the highest state reported
};
