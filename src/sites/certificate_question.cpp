#include "sites/certificate_question.h"

#include "shell/asker.h"

#include <QStringList>

namespace {

QString TextOf(const Inet::DoubtfulCertificate& shown, bool isOther)
{
    QStringList lines{
        QStringLiteral("The certificate of %1 (port %2) is not trusted: %3.")
            .arg(shown.Host, QString::number(shown.Port), shown.Doubts),
        {},
        "Subject: " + shown.Subject,
        "Issuer: " + shown.Issuer,
        QStringLiteral("Valid from %1 until %2").arg(shown.ValidFrom, shown.ValidUntil),
        "SHA-256: " + shown.Fingerprint,
        {},
    };
    if (isOther) lines << "Earlier you have accepted another certificate of this server." << QString();
    lines << "Do you want to trust this certificate for this server from now on?";
    return lines.join("\r\n");
}

}  // namespace

CertificateQuestion::CertificateQuestion(Asker& questions, ErrorRecord& errors, const QString& folder)
    : Questions(questions), Errors(errors), Book(folder + "/TolvCert.dta")
{
}

bool CertificateQuestion::Accepts(const Inet::DoubtfulCertificate& certificate)
{
    const QString known = Book.FingerprintOf(certificate.Host, certificate.Port);
    if (!known.isEmpty() && known == certificate.Fingerprint) return true;
    Question question{TextOf(certificate, !known.isEmpty()), "Tolvane", Question::Critical, Question::YesNo};
    question.Careful = true;
    if (Questions.Ask(question) != Answer::Yes) return false;
    Errors.Attempt([&] { Book.Accept(certificate.Host, certificate.Port, certificate.Fingerprint); });
    return true;
}
