#pragma once

#include "i18n/language_chooser.h"
#include "i18n/toolkit_texts.h"

#include <QObject>
#include <functional>

class Asker;
class StatusLine;
class Waits;

/// The entry of the menu with which the user changes the language. User-interface thread.
class LanguageMenu final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        Language& Texts;
        SettingsStore& Settings;
        SoleInput& Input;
        ErrorRecord& Errors;
        StatusLine& Status;
        Asker& Questions;
        const Waits& Pause;
        std::function<void()> OfferOnAds;  ///< the captions have been set: the advertisements need their offer again
    };

    LanguageMenu(QWidget& window, const Tools& tools);

    /// Lets the user choose, applies the choice to the main window and says that the menus follow at the next start.
    /// A cancel mark, even one that is left from the first start, is cleared, and nothing else happens.
    void mnuLamguage_Click();

private:
    QWidget& Window;
    Tools Use;
    LanguageChooser Chooser;
    ToolkitTexts Toolkit;
};
