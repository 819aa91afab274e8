#include "platform/drives.h"

#include <windows.h>

QStringList Drives()
{
    QStringList drives;
    const DWORD present = GetLogicalDrives();
    for (unsigned number = 0; number < 26; ++number)
        if ((present >> number & 1U) != 0)
            drives += QChar(static_cast<char16_t>(u'A' + number)) + QStringLiteral(":\\");
    return drives;
}

QString DriveOf(const QString& folder, const QStringList& drives)
{
    QString longest;
    for (const QString& drive : drives) {
        const QString inside = drive.endsWith(u'\\') ? drive : drive + u'\\';
        const bool holds = (folder + u'\\').startsWith(inside, Qt::CaseInsensitive);
        if (holds && drive.size() > longest.size()) longest = drive;
    }
    return longest;
}
