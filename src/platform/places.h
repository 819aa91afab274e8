#pragma once

#include <QString>

/// Where the program keeps its own files. User-interface thread.

/// The program's folder: the one that the environment variable TOLVANE_HOME names; else the executable's when it can
/// be written to; else the per-user data folder. It is created when it is missing. An absolute path without a
/// separator at its end.
QString ProgramFolder();

/// The same for an executable in a given folder, without regard to the environment; nothing is created.
QString ProgramFolderBeside(const QString& executableFolder);

/// A file that ships with the program: the one in its folder when there is one, else the one beside the executable,
/// else the one where packages install it. A path in the program's folder when it is nowhere.
QString ShippedFile(const QString& programFolder, const QString& name);
