#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QString>
#include <QTemporaryDir>

/// A certificate that a test made for itself, and its key. Who is to accept it must be told to trust it.
struct HttpCertificate {
    QSslCertificate Certificate;
    QByteArray Key;  ///< PEM

    /// For a host, a name or a number, from `firstDay` to `lastDay` counted from today; signed by an authority, or by
    /// itself.
    static HttpCertificate For(const QString& host, int firstDay = -1, int lastDay = 30,
                               const HttpCertificate* authority = nullptr);
};

/// While one of these lives, the certificates that were given to it are all that this process trusts.
class TrustedCertificates {
public:
    TrustedCertificates();
    explicit TrustedCertificates(const HttpCertificate& certificate);
    ~TrustedCertificates();
    TrustedCertificates(const TrustedCertificates&) = delete;
    TrustedCertificates& operator=(const TrustedCertificates&) = delete;

    void Add(const HttpCertificate& certificate);

private:
    QTemporaryDir Folder;
};
