#pragma once

#include "shell/settings_store.h"

#include <QAction>
#include <QString>

/// The option flags of the program, filled at start-up from the settings store; False until then.
struct Options {
    bool ShortNames = false;          ///< names are converted to their short (8.3) form; key "NT"
    bool UnixListing = false;         ///< listings are asked for as bare names; key "UNIX"
    bool LowerCaseNames = false;      ///< names are converted to lower case; key "LowerCase"
    bool AlarmOn = false;             ///< a sound plays after the last file of a batch; key "Alarm"
    bool CheckDuplicates = false;     ///< as stored under "Dups"; the box Check2 is what counts during a session
    bool SaveLastFolder = false;      ///< the next start opens the last folder; key "DriveSav"
    bool SaveAllInformation = false;  ///< connection values are kept between sessions; key "FTP Address"
    bool EscapePressed = false;       ///< set by the Escape key, tested and cleared by long loops
};

/// Flips an option: the flag takes the opposite of the entry's check mark, the new value is saved under its key,
/// the check mark follows. `entry` must not change its mark by itself when it is triggered.
void ToggleOption(bool& flag, QAction& entry, SettingsStore& settings, const QString& key);
