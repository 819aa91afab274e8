#include "session/command_line.h"

#include "base/conversions.h"
#include "platform/current_folder.h"
#include "session/download_file.h"
#include "session/state_texts.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/busy_pointer.h"

#include <QDir>
#include <QLineEdit>
#include <algorithm>
#include <utility>

namespace {

constexpr int TwipsPerPixel = 15;
constexpr int HeightWithCommandLine = 8565;  // twips

/// What stands behind the last slash; empty without one.
QString NameIn(const QString& address)
{
    const qsizetype slash = address.lastIndexOf(u'/');
    return slash < 0 ? QString() : address.mid(slash + 1);
}

}  // namespace

CommandLine::CommandLine(Controls controls, Tools tools) : Form(controls), Use(std::move(tools)), Status(Form.sbFTP2)
{
    Writer.setMaxThreadCount(1);
}

CommandLine::~CommandLine()
{
    Ends = true;
    Writer.waitForDone();
    const QString hidden = std::exchange(Hidden, {});
    if (hidden.isEmpty()) return;
    Use.Inet2.disconnect(this);
    Use.Inet2.Cancel();
    Discard(hidden);
}

void CommandLine::mnuCommand_Click()
{
    const bool show = !Form.mnuCommand.isChecked();
    for (QWidget* control : {&Form.LblCommandLine, &Form.Label15, &Form.cmdPaste2}) control->setVisible(show);
    // Larger fonts make the content higher, and with it the greatest height that the window can have.
    const int height = show ? std::max(HeightWithCommandLine / TwipsPerPixel, Form.Window.maximumHeight())
                            : Use.NormalFormHeight / TwipsPerPixel;
    Form.Window.resize(Form.Window.width(), height);
    Form.mnuCommand.setChecked(show);
}

void CommandLine::Command14_Click()
{
    RunHandler(Use.Errors, [this] { Begin(); });
}

void CommandLine::Begin()
{
    if (!Hidden.isEmpty() || Use.Inet2.StillExecuting()) {
        Use.Beep();
        return;
    }
    SetPointers(true);
    const QString address = Trimmed(Form.txtCom.currentText());
    if (address.isEmpty() || address.endsWith(u'/')) {
        Use.Beep();
        return;
    }
    const QString name = NameIn(address);
    if (!IsFileName(name)) {
        Complain(name.isEmpty() ? QString("The address names no file.")
                                : "A file cannot have the name \"" + name + "\" on this computer.");
        return;
    }
    const QString folder = CurrentFolder();
    if (folder.isEmpty()) {
        Complain("The current folder on this computer is gone.");
        return;
    }
    Target = QDir::toNativeSeparators(folder + u'/' + name);
    Status.Show("Connecting...");
    Hidden = HiddenFile(folder);
    Fetch(address);
}

void CommandLine::Fetch(const QString& address)
{
    try {
        Use.Inet2.SetReplyFile(Hidden);
        Use.Inet2.OpenURL(address, Inet::ByteArray, [this](const Inet::Download& download) {
            RunHandler(Use.Errors, [&] { Arrived(download); });
        });
    } catch (const RuntimeError& error) {
        Hidden.clear();
        Use.Errors.Caught(error);
        Complain(error.Description);
    }
}

// A failure has been shown as a state already, with the answer that the main session had last; why the download
// itself failed is in the log.
void CommandLine::Arrived(const Inet::Download& download)
{
    if (Hidden.isEmpty()) return;
    if (!download.Arrived) {
        Hidden.clear();
        Use.Log.AddWithTime(Target + " was not received: " + download.Info);
        Use.Pointer.SetNormalPointer();
        SetPointers(false);
        return;
    }
    // The component removes its file with its next command; under another name it is ours.
    Hidden = TakeOver(Hidden);
    if (Hidden.isEmpty()) {
        Complain("The file " + Target + " cannot be written: the folder has gone or cannot be written to any more.");
        return;
    }
    Writer.start([this, hidden = Hidden, target = Target] {
        const QString complaint = LayOver(hidden, target, Ends);
        QMetaObject::invokeMethod(
            this, [this, complaint] { RunHandler(Use.Errors, [&] { Placed(complaint); }); }, Qt::QueuedConnection);
    });
}

void CommandLine::Placed(const QString& complaint)
{
    Hidden.clear();
    if (complaint.isEmpty())
        Finish();
    else
        Complain(complaint);
}

void CommandLine::Complain(const QString& sentence)
{
    Status.Show(sentence);
    Use.Log.AddWithTime(sentence);
    Use.Pointer.SetNormalPointer();
    SetPointers(false);
}

void CommandLine::Finish()
{
    Status.Show("Waiting...");
    SetPointers(false);
    Use.RefreshList();
    Use.Pointer.SetNormalPointer();
}

void CommandLine::SetPointers(bool busy)
{
    QLineEdit& edit = *Form.txtCom.lineEdit();
    for (QWidget* control : {static_cast<QWidget*>(&Form.txtCom), static_cast<QWidget*>(&Form.Command14)}) {
        if (busy)
            control->setCursor(Qt::WaitCursor);
        else
            control->unsetCursor();
    }
    edit.setCursor(busy ? Qt::WaitCursor : Qt::IBeamCursor);
}

void CommandLine::Inet2_StateChanged(int state)
{
    if (state == Inet::Error) {
        ReportError();
        return;
    }
    const char* text = state == Inet::ResponseCompleted ? "File Received!" : StateText(state);
    if (text == nullptr) return;
    Status.Show(text);
    if (state == Inet::Connected) Use.Beep();
    if (state == Inet::ResponseCompleted) Use.Pointer.SetNormalPointer();
    Use.Log.AddWithTime(Status.Text());
}

// The code and the text are those of the main session: the last answer it had.
void CommandLine::ReportError()
{
    Status.Show("Error! " + QString::number(Use.Inet1.ResponseCode()) + ": " + Use.Inet1.ResponseInfo());
    Use.Beep();
    Use.Beep();
    Use.Pointer.SetNormalPointer();
    Use.Log.AddWithTime(Status.Text());
}
