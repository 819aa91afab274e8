#pragma once

#include <QString>
#include <QUrl>

/// Files of this machine as programs hand them to each other: "file:" addresses (RFC 8089). Byte-true: a path that is
/// no text goes and comes as the same bytes. Any thread.

/// The address of an absolute path.
QUrl FileAddress(const QString& path);

/// The path of a file of this machine; empty for every other address.
QString LocalPath(const QUrl& address);
