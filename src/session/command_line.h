#pragma once

#include "base/run_time_error.h"
#include "inet/inet.h"
#include "shell/status_line.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <cstdint>
#include <functional>

class ActivityLog;
class BusyPointer;

/// The command line: one further file, by its full address, over the second channel, while the main session goes on.
/// Nothing waits for it: what follows the download runs when it has arrived. User-interface thread.
class CommandLine final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QWidget& Window;
        QAction& mnuCommand;
        QWidget& LblCommandLine;
        QWidget& Label15;
        QWidget& cmdPaste2;
        QComboBox& txtCom;  ///< the address
        QAbstractButton& Command14;
        QLabel& sbFTP2;  ///< the status line of the second channel
    };

    struct Tools {
        const Inet& Inet1;
        Inet& Inet2;
        ActivityLog& Log;
        BusyPointer& Pointer;
        ErrorRecord& Errors;
        const std::int32_t& NormalFormHeight;  ///< of the window without the command line, in twips
        std::function<void()> RefreshList;     ///< shows the local folder anew
        std::function<void()> Beep;
    };

    CommandLine(Controls controls, Tools tools);
    /// Ends a download on its way and leaves nothing of it.
    ~CommandLine() override;
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Uncovers the command line at the window's lower edge, or covers it again.
    void mnuCommand_Click();

    /// Downloads the address into the current folder of this moment, under the name behind its last slash. A press
    /// while a download is on its way only beeps.
    void Command14_Click();

    /// Shows and logs one state of the second channel.
    void Inet2_StateChanged(int state);

private:
    void Begin();
    void Fetch(const QString& address);
    void Arrived(const Inet::Download& download);
    void Placed(const QString& complaint);
    void Complain(const QString& sentence);
    void Finish();
    void ReportError();
    void SetPointers(bool busy);

    Controls Form;
    Tools Use;
    StatusLine Status;
    QString Target;                  ///< of the download on its way, a full path
    QString Hidden;                  ///< what has arrived of it, a full path; empty while there is no download
    std::atomic<bool> Ends = false;  ///< tells the writer to give up
    QThreadPool Writer;              ///< puts the file in its place beside the user-interface thread
};
