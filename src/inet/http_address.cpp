#include "inet/http_address.h"

#include "base/byte_text.h"

#include <algorithm>

namespace {

constexpr int HttpPort = 80;
constexpr int SecureHttpPort = 443;

bool IsControl(QChar character)
{
    return character.unicode() < 0x20 || character.unicode() == 0x7F;
}

/// Bytes that are no text travel as lone surrogates, which an address cannot hold.
QString WithBytesEncoded(const QString& text)
{
    QString encoded;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar one = text[i];
        const bool isByte = one.isLowSurrogate() && (i == 0 || !text[i - 1].isHighSurrogate());
        if (isByte)
            encoded += u'%' + QString::number(one.unicode() & 0xFF, 16).toUpper();
        else
            encoded += one;
    }
    return encoded;
}

}  // namespace

int PortOf(const QUrl& url)
{
    return url.port(url.scheme() == u"https" ? SecureHttpPort : HttpPort);
}

QString SchemeOf(const QString& address)
{
    const QString text = address.trimmed();
    const qsizetype end = text.indexOf(u"://");
    return end > 0 ? text.first(end).toLower() : QString();
}

std::optional<QUrl> HttpUrl(const QString& address, const QString& scheme)
{
    QString text = address.trimmed();
    if (std::any_of(text.begin(), text.end(), IsControl)) return std::nullopt;
    const qsizetype end = text.indexOf(u"://");
    if (end > 0) text.remove(0, end + 3);
    QUrl url(WithBytesEncoded(scheme + "://" + text), QUrl::TolerantMode);
    if (!url.isValid() || url.host().isEmpty() || url.port(1) == 0) return std::nullopt;
    url.setFragment(QString());
    if (url.path().isEmpty()) url.setPath("/");
    return url;
}

QUrl HttpUrlOfName(const QUrl& base, const QString& name)
{
    QString path = base.path(QUrl::FullyEncoded);
    const QString encoded = QString::fromLatin1(TextToBytes(name).toPercentEncoding("/"));
    if (encoded.startsWith(u'/'))
        path = encoded;
    else
        path = path.left(path.lastIndexOf(u'/') + 1) + encoded;
    QUrl url = base;
    url.setQuery(QString());
    url.setPath(path.startsWith(u'/') ? path : u'/' + path, QUrl::StrictMode);
    return url;
}

std::optional<QUrl> RedirectTarget(const QUrl& from, const QByteArray& location)
{
    QUrl url = from.resolved(QUrl::fromEncoded(location, QUrl::TolerantMode));
    const bool follows = url.scheme() == u"https" || (url.scheme() == u"http" && from.scheme() == u"http");
    if (!url.isValid() || url.host().isEmpty() || !follows) return std::nullopt;
    url.setUserInfo(QString());
    url.setFragment(QString());
    return url;
}

bool IsSameOrigin(const QUrl& one, const QUrl& other)
{
    return one.scheme() == other.scheme() && one.host() == other.host() && PortOf(one) == PortOf(other);
}
