#pragma once

#include <QByteArray>
#include <QString>

/// Files of tests. Paths are byte-true: their names need not be UTF-8. What cannot be done fails the test.

/// Bytes that look random, and are the same for the same seed.
QByteArray Pattern(qint64 size, quint32 seed);

void Write(const QString& path, const QByteArray& bytes);

/// "(none)" when there is no such file.
QByteArray Read(const QString& path);

bool Exists(const QString& path);

/// A file of zeroes that takes no room on the disk.
void MakeSparse(const QString& path, qint64 size);
