#pragma once

#include <QObject>

class ErrorRecord;
class Language;
class QWidget;
class SettingsStore;
class SoleInput;

/// The window frmOpen, in which the user picks one of the ten languages. It is loaded anew by each showing and only
/// stores the choice; whoever shows it applies it. While it is open the program takes no other input, but its main
/// window can still be closed from outside. User-interface thread.
class LanguageChooser final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        Language& Texts;
        SettingsStore& Settings;
        SoleInput& Input;
        ErrorRecord& Errors;
    };

    explicit LanguageChooser(const Tools& tools);

    /// Shows the window and returns when it is gone; events are handled meanwhile. A language button has then put its
    /// language into `Texts` and into the settings "Language" and "Language2"; Cancel has set `LanguageCancelled` and
    /// touched no setting; closing by the title bar has done neither.
    /// `over` is the window that it belongs to; none while the program has no other.
    void Show(QWidget* over);

    /// Closes an open window, and shows no later one: the program ends.
    void End();

    bool Ended() const { return HasEnded; }

signals:
    void EndRequested();

private:
    Tools Use;
    bool HasEnded = false;
};

/// Asks for the language at the very first start, that is while the setting "FLanguage" has the value 0. The mark is
/// stored before the window appears: a first start that is cancelled or killed does not ask again.
void ChooseLanguageAtFirstStart(LanguageChooser& chooser, SettingsStore& settings);
