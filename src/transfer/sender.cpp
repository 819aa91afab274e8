#include "transfer/sender.h"

#include "controls/list_box.h"
#include "inet/inet.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/status_line.h"
#include "transfer/name_options.h"

#include <utility>

Sender::Sender(Controls controls, TransferTools& tools, std::function<void()> beep)
    : Form(controls), Tools(tools), Beep(std::move(beep))
{
}

void Sender::lstRemoteFiles_DragDrop(QWidget* source)
{
    if (std::exchange(Tools.State.EntryChosen, false)) {
        Tools.Pointer.SetNormalPointer();
        return;
    }
    if (source != &Form.List1) return;
    RunHandler(Tools.Errors, [this] { SendSelection(); });
}

void Sender::Image1_Click()
{
    RunHandler(Tools.Errors, [this] { SendSelection(); });
}

void Sender::SendSelection()
{
    if (Tools.Log.IsShown() || Form.lstRemoteFiles.Count() == 0) {
        Beep();
        return;
    }
    Tools.State.TransferNames.clear();
    Tools.State.TransferCount = CollectSelection(Form.List1, Tools.State, true);
    if (Tools.State.TransferCount == 0) return;
    Tools.Status.Show("Sending File(s). Please Wait...");
    PutFiles();
}

std::int32_t Sender::PutFiles()
{
    if (Tools.Inet1.URL().isEmpty()) return 0;
    Batch batch(Tools);
    Tools.Chosen.EscapePressed = false;
    Tools.Pointer.SetBusyPointer();
    bool canceled = false;
    qsizetype done = 0;
    for (const QString& name : batch.Names()) {
        if (name.isEmpty() || batch.SessionEnded()) break;
        canceled = Tools.Chosen.EscapePressed;
        if (canceled) break;
        if (MaySend(name) && !SendOne(batch, Tools.Names.Converted(name))) break;
        ++done;
    }
    Tools.Session.WaitUntilIdle();
    if (!batch.SessionEnded()) {
        Tools.ShortDelay();
        Tools.Session.WaitUntilIdle();
    }
    if (batch.SessionEnded()) {
        batch.TellSessionEnded(batch.Names().size() - done);
        return 0;
    }
    Tools.Session.RequestListing();
    Tools.Status.Show("Refreshing FTP Folder");
    if (canceled) batch.TellCanceled();
    Tools.Pointer.SetNormalPointer();
    return 0;
}

// Returns false when the session ended before the command could go out.
bool Sender::SendOne(Batch& batch, const QString& name)
{
    Tools.Pointer.SetBusyPointer();
    Tools.Session.WaitUntilIdle();
    if (batch.SessionEnded()) return false;
    if (!batch.Issue(SendKind, Tools.State.SendInProgress, "PUT", name)) return true;
    Tools.Status.Show("Sending file " + Tools.State.CurrentFileName);
    Tools.Status.Repaint();
    Tools.Session.WaitUntilIdle();
    return true;
}

bool Sender::MaySend(const QString& name)
{
    if (!Tools.Names.AsksAboutDuplicates() || !HasRemote(name)) return true;
    return AskToOverwrite(Tools, "File " + name + " already exist on server.  Overwrite?");
}

bool Sender::HasRemote(const QString& name) const
{
    for (int index = 0; index < Form.lstRemoteFiles.Count(); ++index)
        if (SameName(Form.lstRemoteFiles.Entry(index), name)) return true;
    return false;
}

void Sender::FinishSend()
{
    if (Tools.Inet1.StillExecuting()) return;
    CountFinishedFile(Tools, Form.Check1);
}
