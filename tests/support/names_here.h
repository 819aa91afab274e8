#pragma once

#include "base/local_name.h"

#include <QByteArray>
#include <QList>

/// Whether a file of this system can have the name: one of Windows is text, and some signs are not for names.
inline bool CanBeFileHere(const QByteArray& name)
{
#ifdef Q_OS_WIN
    if (!name.isValidUtf8()) return false;
#endif
    return IsFileNameHere(name.toStdString());
}

inline QList<QByteArray> NamesHere(QList<QByteArray> names)
{
    names.removeIf([](const QByteArray& name) { return !CanBeFileHere(name); });
    return names;
}
