#include "inet/proxy_system.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QUrl>

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
