#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QString>

/// A certificate that a test made for itself, and its key. Who is to accept it must be told to trust it.
struct HttpCertificate {
    QSslCertificate Certificate;
    QByteArray Key;     ///< PEM
    QByteArray Signer;  ///< PEM: the authority's, which servers show along; empty when there is none

    /// For a host, a name or a number, from `firstDay` to `lastDay` counted from today; signed by an authority, or by
    /// itself.
    static HttpCertificate For(const QString& host, int firstDay = -1, int lastDay = 30,
                               const HttpCertificate* authority = nullptr);
};
