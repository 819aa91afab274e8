#pragma once

#include <QAction>
#include <QObject>
#include <QWidget>

class SettingsStore;
struct ProgramValues;

/// The entries of the options menu that concern the program as a whole. User-interface thread.
class ProgramMenu final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QWidget& Window;
        QAction& mnuSaveFolder;
    };

    ProgramMenu(Controls controls, ProgramValues& values, SettingsStore& settings);

    void mnuSaveFolder_Click();
    void mnuExit_Click();

private:
    Controls Form;
    ProgramValues& Values;
    SettingsStore& Settings;
};
