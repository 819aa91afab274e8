#include "remote/remote_panel.h"

#include "controls/list_box.h"
#include "remote/listing_lines.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"
#include "shell/options.h"
#include "shell/status_line.h"

#include <QElapsedTimer>
#include <algorithm>

namespace {

constexpr qint64 Slice = 5;  // milliseconds of work between two looks at the event loop

bool IsParentMarker(const QString& line)
{
    return line == u"../" || line == u"..\\";
}

}  // namespace

RemotePanel::RemotePanel(Controls controls, Tools tools) : Form(controls), Use(tools) {}

// A run-time error ends the procedure and is shown; nothing crosses a handler.
void RemotePanel::Run(const std::function<void()>& body)
{
    RunHandler(Use.Errors, [&] {
        if (Use.Errors.Attempt(body)) return;
        Use.Status.Show(Use.Errors.Description());
        Use.Log.AddWithDateTime(Use.Errors.Description());
        Use.Pointer.SetNormalPointer();
    });
}

void RemotePanel::ShowRemoteFileList()
{
    const int number = Use.State.ListingNumber;
    Use.Pointer.SetBusyPointer();
    ListingLines lines(Use.Session.GatherReply());
    QStringList entries;
    QElapsedTimer sinceYield;
    sinceYield.start();
    while (Use.State.ListingNumber == number) {
        const std::optional<QString> line = lines.Next();
        if (!line) break;
        entries += *line;
        if (sinceYield.elapsed() < Slice) continue;
        Use.Pause.Yield();
        sinceYield.restart();
    }
    if (Use.State.ListingNumber != number) return;
    Form.lstRemoteFiles.SetFixedPitch(!Use.Chosen.UnixListing);
    Form.lstRemoteFiles.SetEntries(entries);
    Form.Label2_0.setText(QString::number(std::max<qsizetype>(entries.size() - 1, 0)));
    Use.Pointer.SetNormalPointer();
}

void RemotePanel::lstRemoteFiles_Click()
{
    Use.State.EntryChosen = true;
}

void RemotePanel::lstRemoteFiles_DblClick()
{
    Run([this] { DoubleClicked(); });
}

void RemotePanel::DoubleClicked()
{
    const int index = Form.lstRemoteFiles.ListIndex();
    if (index < 0) return;
    const QString line = Form.lstRemoteFiles.Entry(index);
    Use.State.RemoteFolder = Use.State.CurrentUrl + line;
    Use.Pointer.SetBusyPointer();
    if (IsParentMarker(line))
        LeaveByMarker();
    else
        Enter(line);
}

void RemotePanel::Enter(const QString& line)
{
    if (!ChangeFolder("CD " + line)) return;
    Use.Session.Execute(ListingKind, Use.Session.ListingOperation() + u' ', line);
    Use.Status.Show("Changing Directories...");
    Use.Log.AddWithDateTime("Changing Directories...");
    Use.Pointer.SetNormalPointer();
}

void RemotePanel::LeaveByMarker()
{
    if (!ChangeFolder("CDUP")) return;
    Use.Session.RequestListing();
    Use.Session.WaitUntilIdle();
}

void RemotePanel::Command4_Click()
{
    Run([this] { MoveUp(); });
}

void RemotePanel::MoveUp()
{
    Use.Pointer.SetBusyPointer();
    if (!ChangeFolder("CDUP")) return;
    Use.Session.RequestListing();
    Form.lstRemoteFiles.setFocus();
    Use.Status.Show("Changing Folders...");
    Use.Pointer.SetNormalPointer();
}

// Sends the change of folder once the session is idle, and waits for its end. Returns false when the user has hung up
// or connected anew meanwhile: a further command would open the closed session again.
bool RemotePanel::ChangeFolder(const QString& operation)
{
    const int session = Use.State.SessionNumber;
    Use.Session.WaitUntilIdle();
    if (Use.State.SessionNumber == session) {
        if (operation == u"CDUP") Use.State.RemoteFolder = Use.State.CurrentUrl;
        Use.Session.Execute(ListingKind, operation);
        Use.Session.WaitUntilIdle();
    }
    if (Use.State.SessionNumber == session) return true;
    Use.Pointer.SetNormalPointer();
    return false;
}

void RemotePanel::mnuUNIX_Click()
{
    ToggleOption(Use.Chosen.UnixListing, Form.mnuUNIX, Use.Settings, "UNIX");
}
