#include "platform/open_address.h"

#include <QDesktopServices>
#include <QUrl>

void OpenAddress(const QString& address)
{
    (void)QDesktopServices::openUrl(QUrl(address));
}
