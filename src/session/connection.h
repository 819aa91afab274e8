#pragma once

#include "base/run_time_error.h"

#include <QObject>
#include <QString>

class ActivityLog;
class BusyPointer;
class Commands;
class FollowUps;
class Inet;
class Language;
class QAbstractSlider;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QTimer;
class SettingsStore;
class StatusLine;
struct ConnectionValues;
struct Options;
struct TransferState;

/// Begins a session from the connection fields of the window and ends it again. User-interface thread.
class Connection final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QComboBox& txtURL;
        QLineEdit& txtUserName;
        QLineEdit& txtPassword;
        QLineEdit& txtPort;
        QComboBox& Combo1;  ///< the access type; the position of the item is what the component gets
        QLineEdit& txtProxy;
        QAbstractSlider& Slider1;  ///< the request time-out in seconds
        QCheckBox& Check1;         ///< "Disconnect when done."
    };

    struct Tools {
        Inet& Inet1;
        Commands& Session;
        TransferState& State;
        ConnectionValues& Values;
        const Options& Chosen;
        SettingsStore& Settings;
        const Language& Texts;
        StatusLine& Status;
        ActivityLog& Log;
        BusyPointer& Pointer;
        ErrorRecord& Errors;
        FollowUps& Above;
        const bool& MessageDue;  ///< a connect of this run looks for messages of the maker
        QTimer& Timer5;          ///< fetches them
    };

    Connection(Controls controls, Tools tools);

    /// Ends whatever session there is and asks for the first listing of the new one. Returns at once; what follows
    /// comes as states of the component. An error is shown and logged, and no command is issued then.
    void cmdConnect_Click();

    /// Hangs up once the component has finished what it does. A connect during the wait takes over: the session that
    /// it begins stays.
    void Command1_Click();

    /// Puts the port that the chosen protocol usually has into its box.
    void Command8_Click();

    /// The proxy can be typed only where one is used.
    void Combo1_Click();

private:
    void EndOldSession();
    void Connect();
    void KeepValues();
    void FillGaps();
    void SetAccess();
    void SetProperties();
    void Announce();
    void NoteSite();

    void HangUp();

    Controls Form;
    Tools Use;
};
