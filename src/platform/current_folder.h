#pragma once

#include <QString>

/// The process's current folder, which is the folder of the local panel. It belongs to the whole process: change it
/// on the user-interface thread only.

/// An absolute path; empty when the folder has been removed meanwhile.
QString CurrentFolder();

/// Throws RuntimeError "Path not found" or "Permission denied", and stays where it is then.
void ChangeCurrentFolder(const QString& folder);
