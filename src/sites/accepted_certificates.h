#pragma once

#include <QString>
#include <utility>

/// The certificates that the user has accepted although they could not be verified, one for each host and port: a
/// text file with a line "host port fingerprint" each. Lines that cannot be read count for nothing. Only the owner may
/// read it, where the system has such rights, and a change puts a whole new file in its place. Any thread.
class AcceptedCertificates {
public:
    explicit AcceptedCertificates(QString name) : Name(std::move(name)) {}

    /// The fingerprint of the one that was accepted last; empty when none was, or when the file cannot be read.
    QString FingerprintOf(const QString& host, int port) const;

    /// Throws RuntimeError when it cannot be written down; the file is then as it was.
    void Accept(const QString& host, int port, const QString& fingerprint) const;

private:
    QString Name;
};
