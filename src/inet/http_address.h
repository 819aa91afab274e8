#pragma once

#include <QString>
#include <QUrl>
#include <optional>

/// Addresses of HTTP and secure HTTP (RFC 9110 4.2, RFC 3986). Texts are byte-true (base/byte_text.h).

/// The part before "://" in lower case; empty when the text has none.
QString SchemeOf(const QString& address);

/// The address as it goes into a request, percent-encoded where that is missing, with the user and password that it
/// may hold. `scheme`, http or https, takes the place of the address's own. Nothing when the text is no such address,
/// or holds a control character.
std::optional<QUrl> HttpUrl(const QString& address, const QString& scheme);

/// The address of a file by its name: beside `base` when that names a file, inside it when it ends with a slash or has
/// no path. A name beginning with a slash counts from the server's root. Every byte of the name is meant as it is.
QUrl HttpUrlOfName(const QUrl& base, const QString& name);

/// The URL of a redirect without any user and password in it; nothing when it leads nowhere we may follow: to another
/// protocol, or from secure HTTP to plain.
std::optional<QUrl> RedirectTarget(const QUrl& from, const QByteArray& location);

/// The port that the address names, or the usual one of its scheme.
int PortOf(const QUrl& url);

/// Whether both are the same place as far as a user and password are concerned: scheme, host and port.
bool IsSameOrigin(const QUrl& one, const QUrl& other);
