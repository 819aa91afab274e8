#include "local/local_operations.h"

#include "base/conversions.h"
#include "base/file_address.h"
#include "base/formats.h"
#include "controls/list_box.h"
#include "dialogs/picture_viewer.h"
#include "dialogs/text_input.h"
#include "platform/current_folder.h"
#include "platform/file_facts.h"
#include "platform/rename.h"
#include "session/waits.h"
#include "shell/activity_log.h"
#include "shell/asker.h"
#include "shell/status_line.h"

#include <QDir>
#include <QElapsedTimer>
#include <chrono>
#include <utility>

namespace {

constexpr int EndingLength = 4;
constexpr auto EraseQuestion = "Erase File(s)    Are you sure?";
constexpr std::chrono::milliseconds Slice{8};  // of work between two looks at the event loop

/// Without a current folder a name would be one in the root.
QString Folder()
{
    QString folder = CurrentFolder();
    if (folder.isEmpty()) throw RuntimeError("Path not found");
    return folder;
}

bool HoldsSeparator(const QString& name)
{
    return name.contains(u'/') || name.contains(QDir::separator());
}

}  // namespace

QString FullName(const QString& folder, const QString& name)
{
    return folder.endsWith(QDir::separator()) ? folder + name : folder + QDir::separator() + name;
}

ViewKind ViewKindOf(const QString& fullName)
{
    static const QStringList pictures{".bmp", ".gif", ".jpg", ".ico"};
    static const QStringList texts{"html", ".htm", ".txt", ".cgi"};
    const QString ending = Trimmed(fullName.right(EndingLength)).toLower();
    if (pictures.contains(ending)) return ViewKind::Picture;
    return texts.contains(ending) ? ViewKind::Text : ViewKind::None;
}

LocalOperations::LocalOperations(ListBox& list1, Tools tools) : List1(list1), Use(std::move(tools)) {}

/// The entry that was highlighted last, when it still is; else the first one that is; empty when none is.
QString LocalOperations::Highlighted() const
{
    const int index = List1.ListIndex();
    if (index >= 0 && List1.IsSelected(index)) return List1.Entry(index);
    return List1.SelectedEntries().value(0);
}

/// Runs the body of a handler; an error that ends it is told.
template <typename Body>
void LocalOperations::Handle(Body&& body)
{
    RunHandler(Use.Errors, [&] {
        if (!Use.Errors.Attempt(std::forward<Body>(body))) Use.Status.Show(Use.Errors.Description());
    });
}

void LocalOperations::Complain(const QString& sentence)
{
    Use.Status.Show(sentence + ": " + Use.Errors.Description());
}

void LocalOperations::Command15_Click()
{
    Handle([this] {
        if (const QString name = Highlighted(); !name.isEmpty()) View(FullName(Folder(), name));
    });
}

QList<QUrl> LocalOperations::SelectedFiles() const
{
    const QString folder = CurrentFolder();
    if (folder.isEmpty()) return {};
    QList<QUrl> files;
    for (const QString& name : List1.SelectedEntries()) files += FileAddress(FullName(folder, name));
    return files;
}

void LocalOperations::View(const QString& fullName)
{
    switch (ViewKindOf(fullName)) {
    case ViewKind::Picture:
        Use.Viewer.Show(fullName);
        break;
    case ViewKind::Text:
        if (!Use.Errors.Attempt([&] { Use.OpenTextEditor(fullName); }))
            Complain("Cannot open a text editor for " + fullName);
        break;
    case ViewKind::None:
        break;
    }
    Use.Log.AddWithDateTime("Viewed local file " + fullName);
}

void LocalOperations::List1_Click()
{
    if (!Use.ViewerOpen) return;
    Use.Viewer.Unload();
    Command15_Click();
}

void LocalOperations::Command19_Click()
{
    Handle([this] {
        const QString name = Highlighted();
        if (name.isEmpty()) return;
        if (!Use.Errors.Attempt([&] { TellSize(name); })) Complain("Cannot tell the size of " + name);
    });
}

void LocalOperations::TellSize(const QString& name)
{
    const FileFacts facts = FactsOf(FullName(Folder(), name));
    const QString message = name + "    File Size = " + Thousands(static_cast<qint64>(facts.Bytes)) + "  -  " +
                            GeneralDateTime(facts.Changed);
    Use.Questions.Ask({message, "File Size, Date & Time", Question::Information, Question::Ok});
    Use.Log.AddWithDateTime("Viewed size on local file " + message);
}

void LocalOperations::Command20_Click()
{
    Handle([this] { EraseSelection(); });
}

void LocalOperations::EraseSelection()
{
    // Other programs may change the folder, and so the list, while the question is open.
    const QStringList names = List1.SelectedEntries();
    if (names.isEmpty()) {
        Use.Beep();
        List1.setFocus();
        Use.Beep();
        return;
    }
    Use.Status.Show(EraseQuestion);
    const Question question{EraseQuestion, "Erase File?", Question::Critical, Question::YesNo, true};
    if (Use.Questions.Ask(question) == Answer::Yes) Erase(names);
    List1.setFocus();
}

void LocalOperations::Erase(const QStringList& names)
{
    Use.Status.Show("Deleting file.");
    const QString folder = Folder();
    QString refused;
    QElapsedTimer sinceYield;
    sinceYield.start();
    for (const QString& name : names) {
        if (!Use.Errors.Attempt([&] { EraseOne(folder, name); })) {
            refused = "Cannot erase " + name + ": " + Use.Errors.Description();
            Use.Log.AddWithDateTime(refused);
        }
        if (sinceYield.elapsed() < Slice.count()) continue;
        Use.Pause.Yield();
        sinceYield.restart();
    }
    Use.RefreshList();
    Use.Status.Show(refused.isEmpty() ? "Waiting..." : refused);
}

// What the log says has happened.
void LocalOperations::EraseOne(const QString& folder, const QString& name)
{
    EraseFile(FullName(folder, name));
    Use.Log.AddWithDateTime("Erased local file " + name);
}

void LocalOperations::Command21_Click()
{
    Handle([this] { RenameSelected(); });
}

void LocalOperations::RenameSelected()
{
    const QString name = List1.SelectedEntries().value(0);
    if (name.isEmpty()) {
        Use.Beep();
        List1.setFocus();
        return;
    }
    const QString folder = Folder();
    Use.InputText = name;
    Use.Prompt.Ask("Enter new file name.", name);
    const QString wanted = Use.InputText;
    if (wanted.isEmpty() || wanted == name) {
        List1.setFocus();
        return;
    }
    const bool renamed = Use.Errors.Attempt([&] {
        if (HoldsSeparator(wanted)) throw RuntimeError("A file name cannot hold a separator");
        RenameFile(FullName(folder, name), FullName(folder, wanted));
    });
    if (!renamed) {
        Complain("Cannot rename " + name + " to " + wanted);
        List1.setFocus();
        return;
    }
    Use.RefreshList();
    Use.Log.AddWithDateTime("Renamed local file " + name + " to " + wanted);
}
