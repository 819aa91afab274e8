#include "transfer/sender.h"

#include "base/file_address.h"
#include "controls/list_box.h"
#include "inet/inet.h"
#include "platform/file_facts.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/status_line.h"
#include "transfer/name_options.h"

#include <QDir>
#include <utility>

namespace {

constexpr int ToldNames = 5;

/// The last part of a path.
QString NameOf(const QString& path)
{
    return QDir::fromNativeSeparators(path).section(u'/', -1, -1, QString::SectionSkipEmpty);
}

/// Folders, pipes and devices are none; what a link leads to decides. Whether it can be read shows when it is sent.
bool IsFile(const QString& path)
{
    return !path.isEmpty() && KindOf(path) == EntryKind::File;
}

QString PutOperation(const QString& path, const QString& name)
{
    return "PUT " + Quoted(path.isEmpty() ? name : path) + u' ' + Quoted(name);
}

}  // namespace

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

void Sender::lstRemoteFiles_FilesDropped(const QList<QUrl>& files)
{
    RunHandler(Tools.Errors, [&] { SendFiles(files); });
}

bool Sender::MayDrop()
{
    if (!Tools.Log.IsShown() && Form.lstRemoteFiles.Count() > 0) return true;
    Beep();
    return false;
}

void Sender::SendSelection()
{
    if (!MayDrop()) return;
    Tools.State.TransferNames.clear();
    Tools.State.TransferCount = CollectSelection(Form.List1, Tools.State, true);
    if (Tools.State.TransferCount == 0) return;
    Tools.Status.Show("Sending File(s). Please Wait...");
    PutFiles();
}

void Sender::SendFiles(const QList<QUrl>& files)
{
    if (!MayDrop()) return;
    QStringList paths;
    QStringList names;
    QStringList others;
    for (const QUrl& file : files) {
        const QString path = LocalPath(file);
        const QString name = NameOf(path);
        if (!IsFile(path)) {
            others += name.isEmpty() ? file.toString() : name;
            continue;
        }
        paths += path;
        names += name;
    }
    if (!paths.isEmpty()) {
        CollectNames(names, Tools.State);
        Tools.State.TransferCount = static_cast<int>(names.size());
        Tools.Status.Show("Sending File(s). Please Wait...");
        SendAll(paths);
    }
    if (!others.isEmpty()) TellNotSent(others);
}

void Sender::TellNotSent(const QStringList& names)
{
    QString sentence = QStringLiteral("Only files can be sent. Not sent: ") + names.mid(0, ToldNames).join(", ");
    if (names.size() > ToldNames) sentence += QStringLiteral(" and %1 more").arg(names.size() - ToldNames);
    Tools.Log.AddWithDateTime(sentence);
    Tools.Questions.Ask({sentence, "Tolvane", Question::Information, Question::Ok});
}

std::int32_t Sender::PutFiles()
{
    SendAll({});
    return 0;
}

/// Sends the names that were collected, from the paths beside them, or from the current folder without any.
void Sender::SendAll(const QStringList& paths)
{
    if (Tools.Inet1.URL().isEmpty()) return;
    Batch batch(Tools);
    Tools.Chosen.EscapePressed = false;
    Tools.Pointer.SetBusyPointer();
    bool canceled = false;
    qsizetype done = 0;
    for (const QString& name : batch.Names()) {
        if (name.isEmpty() || batch.SessionEnded()) break;
        canceled = Tools.Chosen.EscapePressed;
        if (canceled) break;
        if (MaySend(name) && !SendOne(batch, paths.value(done), name)) break;
        ++done;
    }
    Tools.Session.WaitUntilIdle();
    if (!batch.SessionEnded()) {
        Tools.ShortDelay();
        Tools.Session.WaitUntilIdle();
    }
    if (batch.SessionEnded()) {
        batch.TellSessionEnded(batch.Names().size() - done);
        return;
    }
    Tools.Session.RequestListing();
    Tools.Status.Show("Refreshing FTP Folder");
    if (canceled) batch.TellCanceled();
    Tools.Pointer.SetNormalPointer();
}

// Returns false when the session ended before the command could go out.
bool Sender::SendOne(Batch& batch, const QString& path, const QString& name)
{
    const QString remote = path.isEmpty() ? Tools.Names.Converted(name) : NameOf(Tools.Names.Converted(path));
    Tools.Pointer.SetBusyPointer();
    Tools.Session.WaitUntilIdle();
    if (batch.SessionEnded()) return false;
    if (!batch.Issue(SendKind, Tools.State.SendInProgress, PutOperation(path, remote), remote)) return true;
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
