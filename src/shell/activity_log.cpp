#include "shell/activity_log.h"

#include "base/byte_text.h"
#include "base/formats.h"
#include "shell/busy_pointer.h"

#include <fstream>

ActivityLog::ActivityLog(Controls controls, QString folder, BusyPointer& pointer, std::function<void()> beep,
                         std::function<QDateTime()> now)
    : Form(controls), Folder(std::move(folder)), Pointer(pointer), Beep(std::move(beep)), Clock(std::move(now))
{
    Form.List2.setModel(&Lines);
    Form.List2.setUniformItemSizes(true);
}

void ActivityLog::Add(const QString& line)
{
    const int last = Lines.rowCount();
    Lines.insertRow(last);
    Lines.setData(Lines.index(last), ShownText(line));
}

void ActivityLog::AddWithDateTime(const QString& text)
{
    Add(Stamped(text, GeneralDateTime(Clock())));
}

void ActivityLog::AddWithTime(const QString& text)
{
    Add(Stamped(text, TimeOfDay(Clock())));
}

bool ActivityLog::IsShown() const
{
    return !Form.List2.isHidden();
}

int ActivityLog::Count() const
{
    return Lines.rowCount();
}

QString ActivityLog::Line(int index) const
{
    return Lines.data(Lines.index(index)).toString();
}

void ActivityLog::Command22_Click()
{
    if (IsShown())
        Hide();
    else
        Show();
}

void ActivityLog::Hide()
{
    Form.List2.hide();
    Form.Command22.setText("L");
    Form.List1.setFocus();
    Form.Command23.hide();
    Form.Command25.hide();
}

void ActivityLog::Show()
{
    Form.List2.show();
    Form.Command22.setText("X");
    Form.List2.raise();
    Form.List2.scrollToBottom();
    Form.List2.setFocus();
    Form.Command23.show();
    Form.Command25.show();
}

void ActivityLog::Command23_Click()
{
    if (Count() == 0) {
        Beep();
        return;
    }
    Pointer.SetWaitPointer();
    AppendToFile();
    Pointer.SetNormalPointer();
    AddWithDateTime("Saved Log.txt");
    Form.List2.setCurrentIndex(Lines.index(Count() - 1));
    Form.List2.scrollToBottom();
}

// A folder that cannot be written leaves no file and no message.
void ActivityLog::AppendToFile()
{
    std::ofstream file(FilePath(Folder) / "log.txt", std::ios::binary | std::ios::app);
    for (const QString& line : Lines.stringList()) file << line.toUtf8().constData() << "\r\n";
}

void ActivityLog::Command25_Click()
{
    Lines.setStringList({});
}
