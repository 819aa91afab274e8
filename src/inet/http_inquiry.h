#pragma once

#include "inet/ftp/proxy_address.h"

#include <QObject>
#include <QUrl>
#include <functional>
#include <memory>
#include <string>

/// What has to be known before a request can go out: through which proxy, and whether the host's name leads anywhere.
///
/// The system answers both in its own time and cannot be interrupted, so a thread of its own asks. It is left behind
/// when this object goes away, which never waits.
class HttpInquiry final : public QObject {
    Q_OBJECT

public:
    struct Answer {
        Ftp::Proxy Via;      ///< never System
        std::string Failed;  ///< why the name of the host, or of the proxy, leads nowhere; empty when it does
    };

    /// Asks at once; `answered` is called on this object's thread, once.
    HttpInquiry(const QUrl& url, Ftp::Proxy via, std::function<void(const Answer&)> answered);
    ~HttpInquiry() override;

private:
    struct Shared;
    std::shared_ptr<Shared> Asked;
    std::function<void(const Answer&)> Answered;
};
