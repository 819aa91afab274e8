#pragma once

#include "base/run_time_error.h"

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

class ActivityLog;
class Asker;
class BusyPointer;
class Commands;
class Inet;
class ListBox;
class QWidget;
class StatusLine;
class TextInput;
class Waits;
struct TransferState;

/// What can be done with the entries of the remote panel, besides moving between folders and transferring: making,
/// renaming, erasing, reading, measuring. The lines go to the server whole, in double quotes. What the server refuses
/// is reported like every failing command; the panel then shows what is really there. User-interface thread.
class RemoteOperations final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        ListBox& lstRemoteFiles;
        QWidget& List2;  ///< the activity log
    };

    struct Tools {
        Inet& Inet1;
        Commands& Session;
        TransferState& State;
        Waits& Pause;
        StatusLine& Status;
        ActivityLog& Log;
        BusyPointer& Pointer;
        Asker& Questions;
        TextInput& Prompt;
        QString& InputText;  ///< the answer of Prompt; empty when the user gave up
        ErrorRecord& Errors;
        std::function<void()> Beep;
        std::function<void()> ShortDelay;  ///< may throw ProgramEnding
        /// Opens a file in a text editor, or the editor alone when the path is empty. Returns the number of its
        /// process; throws RuntimeError.
        std::function<qint64(const QString& path)> OpenTextEditor;
    };

    RemoteOperations(Controls controls, Tools tools);

    void Command10_Click();         ///< makes a folder
    void Command6_Click();          ///< renames the highlighted file
    void Command7_Click();          ///< erases the selected files
    void lstRemoteFiles_KeyDown();  ///< the Delete key: erases the highlighted file
    void Command9_Click();          ///< erases the highlighted folder
    void Command5_Click();          ///< reads the highlighted text file
    void Command16_Click();         ///< tells the size of the highlighted file

    qint64 TextEditorProcess = 0;  ///< the number of the editor started last

private:
    void Run(const std::function<void()>& body);
    void MakeFolder();
    void RenameFile();
    void EraseFiles();
    void EraseByKey();
    void EraseFolder();
    void ReadFile();
    void TellSize();

    bool Ask(const QString& text);
    QString AskForName(const QString& title, const QString& prefill = {});
    QString HighlightedLine() const;

    enum class Result { CarriedOut, Failed, SessionEnded };

    Result CarryOut(int session, int operationKind, const QString& operation);
    bool ShowRealState(int session);
    std::optional<QString> FetchSize(const QString& line);

    Controls Form;
    Tools Use;
};
