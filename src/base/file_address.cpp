#include "base/file_address.h"

#include "base/byte_text.h"

#include <QByteArray>

QUrl FileAddress(const QString& path)
{
#ifdef _WIN32
    return QUrl::fromLocalFile(path);
#else
    return QUrl::fromEncoded("file://" + TextToBytes(path).toPercentEncoding("/"), QUrl::StrictMode);
#endif
}

QString LocalPath(const QUrl& address)
{
    QString path = address.toLocalFile();
    if (!path.startsWith(u'/')) return path;
    // The toolkit's own decoding loses bytes that are no UTF-8.
    return BytesToText(QByteArray::fromPercentEncoding(address.path(QUrl::FullyEncoded).toLatin1()));
}
