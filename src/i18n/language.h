#pragma once

#include <QString>
#include <cstdint>

class SettingsStore;

/// The language that the program speaks: a number, from which every text of the string table is found.
/// User-interface thread.
class Language {
public:
    std::int16_t LanguageBase = 1000;  ///< 1000 English, and so on in steps of 1000
    std::int16_t LanguageBase2 = 100;  ///< a tenth of it; only stored
    bool LanguageCancelled = false;    ///< the chooser was left with Cancel; the next use of the menu entry clears it

    /// Text n, 0 to 76, of this language. Throws RuntimeError when the table holds no such text.
    QString LoadText(int n) const;
};

/// The language chosen in the settings; English while none is, or where the setting cannot be read.
Language LanguageFrom(const SettingsStore& settings);
