#pragma once

#include "inet/ftp/tls_certificate.h"

#include <QList>
#include <QSslCertificate>
#include <QSslError>
#include <QUrl>

/// What a server of secure HTTP has shown, as the questions about certificates are asked everywhere: with the host and
/// port of `url`, and with what the check found. Never one that passes for trusted: `errors` that say nothing are an
/// objection, too.
[[nodiscard]] Ftp::Certificate ShownCertificate(const QUrl& url, const QSslCertificate& certificate,
                                                const QList<QSslError>& errors);
