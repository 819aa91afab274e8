#include "transfer/receiver.h"

#include "base/byte_text.h"
#include "base/conversions.h"
#include "base/listing_name.h"
#include "controls/list_box.h"
#include "inet/inet.h"
#include "platform/current_folder.h"
#include "session/commands.h"
#include "session/transfer_state.h"
#include "session/waits.h"
#include "shell/asker.h"
#include "shell/busy_pointer.h"
#include "shell/status_line.h"
#include "transfer/name_options.h"

#include <QDir>
#include <utility>

Receiver::Receiver(Controls controls, TransferTools& tools, Inet& inet2, LocalSteps local)
    : Form(controls), Tools(tools), Inet2(inet2), Local(std::move(local))
{
}

void Receiver::List1_DragDrop(QWidget* source)
{
    Dropped(source, {});
}

void Receiver::Dir1_DragDrop(QWidget* source)
{
    Dropped(source, "Receiving File(s). Please Wait...");
}

void Receiver::Image2_Click()
{
    RunHandler(Tools.Errors, [this] { ReceiveSelection({}); });
}

void Receiver::Dropped(QWidget* source, const QString& announcement)
{
    if (std::exchange(Tools.State.EntryChosen, false)) return;
    if (source != &Form.lstRemoteFiles) return;
    RunHandler(Tools.Errors, [&] { ReceiveSelection(announcement); });
}

void Receiver::ReceiveSelection(const QString& announcement)
{
    if (const int selected = CollectSelection(Form.lstRemoteFiles, Tools.State, false); selected > 0) {
        if (!announcement.isEmpty()) Tools.Status.Show(announcement);
        Tools.Pointer.SetBusyPointer();
        Tools.State.TransferCount = selected;
        if (!GetFiles()) return;
    }
    Tools.Status.Show("Waiting...");
    Tools.Pointer.SetNormalPointer();
}

bool Receiver::GetFiles()
{
    Batch batch(Tools);
    const QStringList& names = batch.Names();
    for (qsizetype index = 0; index < names.size(); ++index) {
        const QString name = Trimmed(names[index]);
        if (name.isEmpty()) {
            Tools.Pointer.SetNormalPointer();
            return true;
        }
        if (Tools.Chosen.EscapePressed) {
            batch.TellCanceled();
            return false;
        }
        Tools.Pause.Yield();
        Tools.Pointer.SetBusyPointer();
        const QString converted = Tools.Names.Converted(name);
        if (!MayReceive(converted)) continue;
        Tools.Session.WaitUntilIdle();
        if (batch.SessionEnded()) {
            batch.TellSessionEnded(names.size() - index);
            return false;
        }
        ReceiveOne(batch, converted);
    }
    return true;
}

void Receiver::ReceiveOne(Batch& batch, const QString& name)
{
    LocalTarget = QDir::toNativeSeparators(CurrentFolder() + u'/') + name;
    const QString quoted = Quoted(name);
    if (!batch.Issue(ReceiveKind, Tools.State.ReceiveInProgress, "GET " + quoted + u' ' + quoted, name)) return;
    Tools.Status.Show("Receiving File " + Tools.State.CurrentFileName);
    Form.Check1.setEnabled(false);
    Tools.Pointer.SetBusyPointer();
    Tools.Session.WaitUntilIdle();
}

bool Receiver::MayReceive(const QString& name)
{
    if (!Tools.Names.AsksAboutDuplicates()) return true;
    const std::optional<QString> twin = LocalTwin(name);
    if (!twin) return true;
    return AskToOverwrite(Tools, "File " + *twin + " already exist on drive.  Overwrite?");
}

/// The name under which the file lies in the local folder already: the line itself, or the name inside it, which is
/// the one the file gets when the server does not take the whole line.
std::optional<QString> Receiver::LocalTwin(const QString& name) const
{
    if (HasLocal(name)) return name;
    const QByteArray bytes = TextToBytes(name);
    const auto inner = NameInListingLine({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (!inner) return std::nullopt;
    const QString text = BytesToText(QByteArray::fromStdString(*inner));
    return HasLocal(text) ? std::optional(text) : std::nullopt;
}

bool Receiver::HasLocal(const QString& name) const
{
    for (int index = 0; index < Form.List1.Count(); ++index)
        if (SameName(Form.List1.Entry(index), name)) return true;
    return false;
}

void Receiver::FinishReceive()
{
    if (Tools.Inet1.StillExecuting()) return;
    Tools.Status.Show("Refreshing Folder");
    Local.RefreshList();
    Local.RefreshDiskSpace();
    CountFinishedFile(Tools, Form.Check1);
}

std::int32_t Receiver::GetFiles2(QString fileList)
{
    if (fileList.isEmpty()) return 0;
    Tools.Status.Show("Receiving File(s). Please Wait...");
    Tools.Pointer.SetBusyPointer();
    bool canceled = false;
    while (!fileList.isEmpty()) {
        canceled = Tools.Chosen.EscapePressed;
        if (canceled) break;
        const QString name = fileList.section(u'|', 0, 0);
        fileList = fileList.section(u'|', 1);
        if (!name.isEmpty()) ReceiveOnSecondChannel(Tools.Names.Converted(name));
    }
    Tools.Chosen.EscapePressed = false;
    Tools.Pause.UntilIdle(Inet2);
    Tools.Pointer.SetNormalPointer();
    Tools.Status.Show(canceled ? QStringLiteral("Canceled by user") : QStringLiteral("Refreshing Folder"));
    Local.RefreshList();
    return 0;
}

void Receiver::ReceiveOnSecondChannel(const QString& name)
{
    Tools.Pause.UntilIdle(Inet2);
    Tools.State.OperationKind = ReceiveKind;
    Tools.State.ReceiveInProgress = true;
    Tools.Status.Show("Receiving File " + name);
    Inet2.Execute(Inet2.URL(), "GET " + name + u' ' + name);
    Form.Check1.setEnabled(false);
    Tools.Pause.Yield();
}
