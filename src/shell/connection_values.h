#pragma once

#include <QString>

class SettingsStore;

/// The values of the last connect, as they were typed; written at connect, stored at shut-down.
struct ConnectionValues {
    QString SavedUrl;
    QString SavedUser;
    QString SavedPassword;
    QString SavedProxy;
    int ProtocolChoice = 2;  ///< 1 default, 2 FTP, 4 HTTP, 5 secure HTTP
};

/// Writes the four texts to the settings "SaveURL", "SavePass", "SaveUser" and "SaveProxy".
void StoreConnectionValues(const ConnectionValues& values, SettingsStore& settings);
