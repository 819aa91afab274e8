#include "inet/proxy_system.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QUrl>

#ifdef Q_OS_WIN

namespace {

// The library looks at the system's exceptions with regular expressions, and once it has compiled one it keeps a stack
// for each thread. With MinGW that is gone before the end of a thread tidies it up, and the program with it. The
// library reads this once, when it first meets an expression, hence before main().
[[maybe_unused]] const bool IsInterpreting = qputenv("QT_ENABLE_REGEXP_JIT", "0");

}  // namespace

#endif

Ftp::Proxy SystemProxy(const std::string& scheme, const std::string& host, std::uint16_t port)
{
    const QString name = QString::fromStdString(host);
    if (name == u"localhost" || QHostAddress(name).isLoopback()) return {};
    QUrl url;
    url.setScheme(QString::fromStdString(scheme));
    url.setHost(name);
    url.setPort(port);
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    for (const QNetworkProxy& one : proxies) {
        Ftp::Proxy proxy;
        switch (one.type()) {
        case QNetworkProxy::NoProxy:
            return proxy;
        case QNetworkProxy::HttpProxy:
        case QNetworkProxy::HttpCachingProxy:
        case QNetworkProxy::FtpCachingProxy:
            proxy.Kind = Ftp::Proxy::Connect;
            break;
        case QNetworkProxy::Socks5Proxy:
            proxy.Kind = Ftp::Proxy::Socks5;
            break;
        default:
            continue;
        }
        proxy.Host = one.hostName().toStdString();
        proxy.Port = one.port();
        proxy.User = one.user().toStdString();
        proxy.Password = one.password().toStdString();
        if (!proxy.Host.empty() && proxy.Port != 0) return proxy;
    }
    return {};
}
