#pragma once

#include <QAbstractSlider>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <functional>

class ActivityLog;
class BusyPointer;
class Language;
class SettingsStore;
class Timers;
struct ProgramValues;

/// Brings the main window to life from the settings store, once, before the first event is handled.
/// A step that fails is left out; the next one runs. User-interface thread.
class StartUp {
public:
    struct Controls {
        QWidget& Window;
        QAction& mnuNT;
        QAction& mnuUNIX;
        QAction& mnuConvertLower;
        QAction& mnuAlarm;
        QAction& mnuSaveFolder;
        QAction& mnuSavFTPAddress;
        QCheckBox& Check2;
        QAbstractSlider& Slider1;
        QLabel& SlideVal;
        QComboBox& txtURL;
        QLineEdit& txtUserName;
        QLineEdit& txtPassword;
        QLineEdit& txtProxy;
    };

    struct Tools {
        ProgramValues& Values;
        SettingsStore& Settings;
        const Language& Texts;
        ActivityLog& Log;
        BusyPointer& Pointer;
        Timers& Clocks;
        QString ProgramFolder;
        std::function<QDateTime()> Now;
        /// Puts the local panel on the process's current folder.
        std::function<void()> OpenLocalPanel;
        /// Loads the site book into the list of the address box.
        std::function<void()> LoadSites;
        /// Gives the advertisements their offer and brings the last one to the front.
        std::function<void()> OfferOnAds;
    };

    StartUp(Controls controls, Tools tools);

    void InitialiseMainWindow();

private:
    void MakeTempFolder();
    void ApplyLanguage();
    void ReadOptions();
    void ReadOption(const char* key, bool absent, bool& flag);
    void ReadOption(const char* key, bool absent, bool& flag, QAction& entry);
    void ChooseStartFolder();
    void OpenStartFolder();
    void RestoreTimeout();
    void RestoreConnection();
    void ForgetConnection();
    QString StoredUnlessMarked(const char* key) const;
    void CountStart();
    void Finish();

    Controls Form;
    Tools Use;
};
