#include "sites/accepted_certificates.h"

#include "base/byte_text.h"
#include "base/run_time_error.h"
#include "sites/owned_file.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <filesystem>
#include <system_error>

namespace {

constexpr qint64 MaxBytes = 1 << 20;

struct Entry {
    QString Server;
    QString Fingerprint;
};

/// How a server is written in the file. A blank would look like the end of the name.
QString ServerOf(const QString& host, int port)
{
    return host.toLower().replace(u' ', u'_') + u' ' + QString::number(port);
}

QList<Entry> EntriesIn(const QString& name)
{
    std::error_code failure;
    if (!std::filesystem::exists(FilePath(name), failure)) return {};
    QFile file;
    OpenOwnedFile(file, name);
    static const QRegularExpression line("^(\\S+ [0-9]{1,5}) ([0-9A-F]{2}(?::[0-9A-F]{2}){31})$");
    QList<Entry> entries;
    const QStringList lines = BytesToText(file.read(MaxBytes)).split(u'\n');
    for (const QString& text : lines) {
        const QRegularExpressionMatch match = line.match(text);
        if (match.hasMatch()) entries.append({match.captured(1), match.captured(2)});
    }
    return entries;
}

}  // namespace

QString AcceptedCertificates::FingerprintOf(const QString& host, int port) const
{
    const QString server = ServerOf(host, port);
    try {
        const QList<Entry> entries = EntriesIn(Name);
        for (const Entry& entry : entries)
            if (entry.Server == server) return entry.Fingerprint;
    } catch (const RuntimeError&) {
        // Nothing that can be read has been accepted.
    }
    return {};
}

void AcceptedCertificates::Accept(const QString& host, int port, const QString& fingerprint) const
{
    const QString server = ServerOf(host, port);
    QString text = server + u' ' + fingerprint + u'\n';
    const QList<Entry> entries = EntriesIn(Name);
    for (const Entry& entry : entries)
        if (entry.Server != server) text += entry.Server + u' ' + entry.Fingerprint + u'\n';
    RemoveLeftOvers(Name);
    ReplaceOwnedFile(Name, TextToBytes(text));
}
