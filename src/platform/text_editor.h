#pragma once

#include <QString>

/// Starts the desktop's text editor as a process of its own, with the file or, when the path is empty, without one.
/// Returns the number of the process; throws RuntimeError "File not found" when no editor can be started.
///
/// The editor is the command in the environment variable TOLVANE_EDITOR; without one the program that the desktop has
/// for plain text files, and else the first one found of the usual editors. Never a program that the kind of file
/// would choose: files come from servers. User-interface thread.
qint64 OpenTextEditor(const QString& path);
