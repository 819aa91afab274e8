#pragma once

#include <QString>

/// The short (8.3) forms of paths. On systems without them the short form of an existing path is the path itself.
/// Relative paths start at the process's current folder. Any thread.

/// The short form; the path unchanged where there is none (no such file, for instance).
QString ShortPath(const QString& path);

/// The short form; empty where there is none.
QString ShortName(const QString& path);
