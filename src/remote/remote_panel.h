#pragma once

#include "base/run_time_error.h"

#include <QAction>
#include <QLabel>
#include <QObject>
#include <functional>

class ActivityLog;
class BusyPointer;
class Commands;
class ListBox;
class SettingsStore;
class StatusLine;
class Waits;
struct Options;
struct TransferState;

/// The remote panel: the lines of the server's current folder as it sends them, and the moves between folders.
/// User-interface thread.
class RemotePanel final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        ListBox& lstRemoteFiles;
        QLabel& Label2_0;  ///< the count of its entries, less one
        QAction& mnuUNIX;
    };

    struct Tools {
        Commands& Session;
        TransferState& State;
        Waits& Pause;
        Options& Chosen;
        SettingsStore& Settings;
        StatusLine& Status;
        ActivityLog& Log;
        BusyPointer& Pointer;
        ErrorRecord& Errors;
    };

    RemotePanel(Controls controls, Tools tools);

    /// Replaces the entries by the lines of the reply that has just arrived; the selection is lost. Events are handled
    /// in between when there are many lines; when a newer listing is asked for meanwhile, this one is given up and the
    /// list stays as it is. Throws ProgramEnding.
    void ShowRemoteFileList();

    void lstRemoteFiles_Click();     ///< an entry has been chosen with the left button
    void lstRemoteFiles_DblClick();  ///< enters the folder, or leaves it by a parent marker
    void Command4_Click();           ///< one folder up
    void mnuUNIX_Click();

private:
    void Run(const std::function<void()>& body);
    void DoubleClicked();
    void Enter(const QString& line);
    void LeaveByMarker();
    void MoveUp();
    bool ChangeFolder(const QString& operation);

    Controls Form;
    Tools Use;
};
