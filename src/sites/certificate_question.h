#pragma once

#include "base/run_time_error.h"
#include "inet/inet.h"
#include "sites/accepted_certificates.h"

class Asker;

/// Decides about certificates that could not be verified: the user is shown what there is to see and asked, and an
/// accepted one is remembered for its host and port in TolvCert.dta, so that the same is not asked again.
/// User-interface thread.
class CertificateQuestion {
public:
    /// `folder` is the program's folder.
    CertificateQuestion(Asker& questions, ErrorRecord& errors, const QString& folder);

    /// Events happen while the user thinks.
    bool Accepts(const Inet::DoubtfulCertificate& certificate);

private:
    Asker& Questions;
    ErrorRecord& Errors;
    AcceptedCertificates Book;
};
