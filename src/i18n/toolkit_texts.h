#pragma once

#include <QString>
#include <QTranslator>

class Language;

/// What the toolkit itself says, such as the buttons of message boxes, in the language of the program; in English where
/// the toolkit ships no translation, or none is installed. Lasts as long as this lives. User-interface thread.
class ToolkitTexts {
public:
    /// Speaks the given language from now on.
    void Follow(const Language& language);

private:
    /// Finds the texts of buttons in older translations too, which keep them in another place.
    class Translations final : public QTranslator {
    public:
        QString translate(const char* context, const char* text, const char* remark, int count) const override;
    };

    Translations Texts;
};
