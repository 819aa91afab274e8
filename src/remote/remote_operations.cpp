#include "remote/remote_operations.h"

#include "base/conversions.h"
#include "base/formats.h"
#include "controls/list_box.h"
#include "dialogs/text_input.h"
#include "inet/inet.h"
#include "platform/current_folder.h"
#include "platform/short_path.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/status_line.h"

#include <QDir>
#include <QScopedValueRollback>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr auto PrivilegesHint = "You must have file privileges!";
constexpr int ReplySize = 1024;  // characters; a size is a few digits

QString Quoted(const QString& name)
{
    return u'"' + name + u'"';
}

qint64 WholeNumber(const QString& text)
{
    const double figure = std::round(LeadingNumber(text));
    if (!(std::abs(figure) < static_cast<double>(std::numeric_limits<qint64>::max()))) throw RuntimeError("Overflow");
    return static_cast<qint64>(figure);
}

}  // namespace

RemoteOperations::RemoteOperations(Controls controls, Tools tools) : Form(controls), Use(std::move(tools)) {}

// A run-time error ends the procedure and is shown; nothing crosses a handler.
void RemoteOperations::Run(const std::function<void()>& body)
{
    RunHandler(Use.Errors, [&] {
        if (Use.Errors.Attempt(body)) return;
        Use.Status.Show(Use.Errors.Description());
        Use.Log.AddWithDateTime(Use.Errors.Description());
        Use.Pointer.SetNormalPointer();
    });
}

void RemoteOperations::Command10_Click()
{
    Run([this] { MakeFolder(); });
}

void RemoteOperations::Command6_Click()
{
    Run([this] { RenameFile(); });
}

void RemoteOperations::Command7_Click()
{
    Run([this] { EraseFiles(); });
}

void RemoteOperations::lstRemoteFiles_KeyDown()
{
    Run([this] { EraseByKey(); });
}

void RemoteOperations::Command9_Click()
{
    Run([this] { EraseFolder(); });
}

void RemoteOperations::Command5_Click()
{
    Run([this] {
        const QScopedValueRollback skip(Use.State.SkipListing, true);
        ReadFile();
    });
}

void RemoteOperations::Command16_Click()
{
    Run([this] {
        const QScopedValueRollback skip(Use.State.SkipListing, true);
        TellSize();
    });
}

void RemoteOperations::MakeFolder()
{
    const int session = Use.State.SessionNumber;
    const QString answer = AskForName("Enter new folder name.");
    if (answer.isEmpty()) return;
    Use.Pointer.SetBusyPointer();
    const QString name = Quoted(answer);
    const Result result = CarryOut(session, ListingKind, "MKDIR " + name);
    if (!ShowRealState(session)) return;
    if (result == Result::CarriedOut) {
        Use.Status.Show("Folder Created.");
        Use.Log.AddWithDateTime("Created Folder " + name);
    }
    Use.Pointer.SetNormalPointer();
}

void RemoteOperations::RenameFile()
{
    const QString line = HighlightedLine();
    if (line.isEmpty()) return;
    const int session = Use.State.SessionNumber;
    const QString answer = AskForName("Enter new file name.", line);
    if (answer.isEmpty()) return;
    const QString newName = Quoted(answer);
    const QString oldName = Quoted(line);
    Use.Pointer.SetBusyPointer();
    const Result result = CarryOut(session, ListingKind, "RENAME " + oldName + u' ' + newName);
    if (!ShowRealState(session)) return;
    if (result == Result::CarriedOut) {
        Use.Log.AddWithDateTime("Renamed File " + oldName + " to " + newName);
        Use.Status.Show("File Renamed.");
    }
    Use.Pointer.SetNormalPointer();
}

// The selected lines are taken once: a listing that arrives during a wait replaces the list.
void RemoteOperations::EraseFiles()
{
    const QStringList lines = Form.lstRemoteFiles.SelectedEntries();
    if (lines.isEmpty()) return;
    const int session = Use.State.SessionNumber;
    bool erased = false;
    for (const QString& line : lines) {
        const QString name = Quoted(line);
        Use.Beep();
        if (!Ask("Erase File " + name + ".  Are you sure?")) continue;
        Use.Status.Show("Deleting file.");
        const Result result = CarryOut(session, ListingKind, "DELETE " + name);
        if (result == Result::SessionEnded) break;
        if (result == Result::Failed) continue;
        Use.Log.AddWithDateTime("Erased File " + name);
        erased = true;
    }
    if (Use.State.SessionNumber == session) Use.ShortDelay();
    if (!ShowRealState(session)) return;
    if (erased) Use.Status.Show("File Erased.");
}

void RemoteOperations::EraseByKey()
{
    const QString line = HighlightedLine();
    if (line.isEmpty()) return;
    const int session = Use.State.SessionNumber;
    const QString name = Quoted(line);
    if (!Ask("Erase File " + name + ".  Are you sure?")) return;
    Use.Status.Show("File erased.");
    const Result result = CarryOut(session, EraseKind, "DELETE " + name);
    if (!ShowRealState(session)) return;
    if (result == Result::CarriedOut) Use.Status.Show("File Erased.");
}

void RemoteOperations::EraseFolder()
{
    const QString line = HighlightedLine();
    if (line.isEmpty()) return;
    const int session = Use.State.SessionNumber;
    Use.Beep();
    if (!Ask("Erase folder " + line + "? Are you sure?")) {
        Use.Status.Show({});
        return;
    }
    Use.Status.Show("Erasing folder.");
    const QString name = Quoted(line);
    const Result result = CarryOut(session, ListingKind, "RMDIR " + name);
    if (!ShowRealState(session) || result != Result::CarriedOut) return;
    Use.Log.AddWithDateTime("Erased Folder " + name);
    Use.Status.Show("Folder Erased.");
}

// Without a local file of this name there is no short form of its path: the server's file then gets its own name, and
// the editor starts without one.
void RemoteOperations::ReadFile()
{
    const QString line = HighlightedLine();
    if (line.isEmpty()) return;
    const QString path = ShortName(QDir::toNativeSeparators(CurrentFolder() + u'/') + line);
    const QString name = Quoted(line);
    const Result result = CarryOut(Use.State.SessionNumber, ListingKind, "GET " + name + u' ' + path);
    if (result != Result::CarriedOut) return;
    Use.Log.AddWithDateTime("Read File " + name);
    TextEditorProcess = Use.OpenTextEditor(path);
}

void RemoteOperations::TellSize()
{
    const QString line = HighlightedLine();
    if (line.isEmpty()) return;
    Use.Pointer.SetBusyPointer();
    const std::optional<QString> reply = FetchSize(line);
    Use.Pointer.SetNormalPointer();
    if (!reply) return;
    const QString text = "   " + line + "  = " + Thousands(WholeNumber(*reply)) + "  Bytes ";
    Use.Questions.Ask({text, "File Size", Question::Information, Question::Ok, false});
    Use.Pause.ThrowWhenEnding();
    Use.Log.AddWithDateTime("File size on " + text);
    Form.List2.setFocus();
}

// Nothing when the server did not tell it.
std::optional<QString> RemoteOperations::FetchSize(const QString& line)
{
    const Result result = CarryOut(Use.State.SessionNumber, ListingKind, "SIZE " + Quoted(line));
    if (result != Result::CarriedOut) return std::nullopt;
    return Use.Inet1.GetChunk(ReplySize, Inet::Text);
}

bool RemoteOperations::Ask(const QString& text)
{
    const Answer answer = Use.Questions.Ask({text, PrivilegesHint, Question::NoIcon, Question::YesNo, false});
    Use.Pause.ThrowWhenEnding();
    return answer == Answer::Yes;
}

QString RemoteOperations::AskForName(const QString& title, const QString& prefill)
{
    Use.Pointer.SetNormalPointer();
    Use.InputText.clear();
    Use.Prompt.Ask(title, prefill);
    Use.Pause.ThrowWhenEnding();
    return Use.InputText;
}

QString RemoteOperations::HighlightedLine() const
{
    const int index = Form.lstRemoteFiles.ListIndex();
    return index < 0 ? QString() : Form.lstRemoteFiles.Entry(index);
}

// Does not touch a session other than the one in which the user asked: after a hang-up the operation would open the
// closed session again, after a connect it would meet another server's files.
RemoteOperations::Result RemoteOperations::CarryOut(int session, int operationKind, const QString& operation)
{
    Use.Session.WaitUntilIdle();
    if (Use.State.SessionNumber != session) return Result::SessionEnded;
    const bool carriedOut = Use.Session.CarryOut(operationKind, operation);
    if (Use.State.SessionNumber != session) return Result::SessionEnded;
    return carriedOut ? Result::CarriedOut : Result::Failed;
}

// Returns false when the session has ended and no listing is asked for.
bool RemoteOperations::ShowRealState(int session)
{
    Use.Session.WaitUntilIdle();
    if (Use.State.SessionNumber != session) {
        Use.Pointer.SetNormalPointer();
        return false;
    }
    Use.Session.RequestListing();
    return true;
}
