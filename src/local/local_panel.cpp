#include "local/local_panel.h"

#include "base/byte_text.h"
#include "controls/list_box.h"
#include "local/disk_space.h"
#include "local/folder_reader.h"
#include "platform/current_folder.h"
#include "platform/drives.h"
#include "platform/file_facts.h"
#include "session/waits.h"
#include "shell/status_line.h"

#include <QElapsedTimer>
#include <QScopedValueRollback>
#include <QStyle>
#include <algorithm>
#include <filesystem>
#include <utility>

namespace {

constexpr std::chrono::milliseconds Slice{8};  // of work between two looks at the event loop
constexpr int ManyFiles = 10'000;
constexpr std::chrono::milliseconds FollowDelay{200};
constexpr int RestAfterReading = 3;  // times as long as the reading has taken, in a folder that changes all the time

// The current folder and the one above, as the watcher is told of them.
#ifdef Q_OS_WIN
// The watcher would take a relative path for one in the folder that is current when the watch ends.
QString CurrentOne()
{
    return CurrentFolder();
}

QString OneAbove()
{
    return PathText(FilePath(CurrentFolder()).parent_path());
}
#else
// As the process sees them, so that folders whose names are no text can be watched too.
QString CurrentOne()
{
    return QStringLiteral(".");
}

QString OneAbove()
{
    return QStringLiteral("..");
}
#endif

const QStringList& FilterPatterns()
{
    static const QStringList patterns{
        "*.html;*.htm*",
        "*.gif;*.jpg;*.bmp*",
        "*.mpg;*.mov;*.avi;*.mpeg*",
        "*.txt;*.doc*",
        "*.html;*.htm;*.gif;*.jpg;*.bmp;*.mpeg;*.mpg;*.mov;*.avi;*.txt;*.doc;*.wav;*.mid*",
        "*.zip;*.wav;*.mid;*.midi;*.mp3;*.exe*",
        "*.gif;*.jpg*",
        "*.gif*",
        "*.jpg*",
        "*.*",
    };
    return patterns;
}

/// Fills the box and keeps what it shows. A typed pattern is taken as it is: completing "*.gif" to the longer pattern
/// that begins with it would apply another one.
void PrepareFilterBox(QComboBox& box)
{
    const QString shown = box.currentText();
    box.setEditable(true);
    box.setInsertPolicy(QComboBox::NoInsert);
    box.setCompleter(nullptr);
    box.clear();
    box.addItems(FilterPatterns());
    box.setCurrentIndex(-1);
    box.setEditText(shown);
}

/// The folder, or the nearest one above it that is there.
QString NearestFolder(const QString& path)
{
    std::filesystem::path folder = FilePath(path);
    while (folder.has_relative_path() && !IsFolder(PathText(folder))) folder = folder.parent_path();
    return PathText(folder);
}

}  // namespace

LocalPanel::LocalPanel(Controls controls, Tools tools)
    : Form(controls), Use(std::move(tools)), Delegate(Folders, Form.Dir1.style()->standardIcon(QStyle::SP_DirOpenIcon),
                                                      Form.Dir1.style()->standardIcon(QStyle::SP_DirClosedIcon))
{
    PrepareFilterBox(Form.Combo2);
    Form.Dir1.setUniformItemSizes(false);
    Form.Dir1.setSelectionMode(QAbstractItemView::SingleSelection);
    Form.Dir1.setItemDelegate(&Delegate);
    FollowTimer.setSingleShot(true);
    FollowTimer.setInterval(FollowDelay);
    connect(&FollowTimer, &QTimer::timeout, this, &LocalPanel::Follow);
    connect(&Watcher, &QFileSystemWatcher::directoryChanged, this, &LocalPanel::FolderTouched);
}

void LocalPanel::Open()
{
    RunHandler(Use.Errors, [this] { FolderChanged(); });
}

void LocalPanel::Dir1_DblClick()
{
    const int row = Form.Dir1.ListIndex();
    if (row < 0) return;
    const QString folder = Folders[static_cast<std::size_t>(row)].Path;
    RunHandler(Use.Errors, [&] {
        if (MoveTo(folder)) FolderChanged();
    });
}

void LocalPanel::Dir1_Change()
{
    RunHandler(Use.Errors, [this] { FolderChanged(); });
}

void LocalPanel::Drive1_Change()
{
    const QString drive = Form.Drive1.currentData().toString();
    RunHandler(Use.Errors, [&] {
        if (MoveTo(drive))
            FolderChanged();
        else
            ShowDrive();
    });
}

void LocalPanel::Combo2_Change()
{
    RunHandler(Use.Errors, [this] { ApplyFilter(); });
}

void LocalPanel::Combo2_Click()
{
    RunHandler(Use.Errors, [this] { ApplyFilter(); });
}

void LocalPanel::ApplyFilter()
{
    Filter = FilePattern(Form.Combo2.currentText());
    RefreshList();
    Form.List1.setFocus();
}

bool LocalPanel::MoveTo(const QString& folder)
{
    if (Use.Errors.Attempt([&] { ChangeCurrentFolder(folder); })) return true;
    Complain(folder);
    return false;
}

void LocalPanel::FolderChanged()
{
    if (const std::optional<Contents> contents = ReadFolder()) {
        ShowFiles(contents->Files);
        ShowFolders(contents->Folders);
    }
    ShowDrive();
    Use.Space.RefreshDiskSpace();
}

void LocalPanel::RefreshList()
{
    if (const std::optional<Contents> contents = ReadFolder()) ShowFiles(contents->Files);
}

// Begun before each reading, so that no change is missed. That the folder itself has gone or has another name only the
// one above tells.
void LocalPanel::WatchFolder()
{
    if (const QStringList watched = Watcher.directories(); !watched.isEmpty()) Watcher.removePaths(watched);
    if (CurrentFolder().isEmpty()) {
        WaitForFolder();
        return;
    }
    WatchedFolder = CurrentOne();
    WatchedAbove = OneAbove();
    Watcher.addPath(WatchedFolder);
    if (WatchedAbove != WatchedFolder) Watcher.addPath(WatchedAbove);
}

// What has gone may come back under its name: the nearest folder above that is still there tells.
void LocalPanel::WaitForFolder()
{
    WatchedFolder.clear();
    WatchedAbove.clear();
    Watcher.addPath(NearestFolder(Folder));
    // It may have come before the watch.
    if (IsFolder(Folder)) FollowTimer.start();
}

void LocalPanel::FolderTouched(const QString& watched)
{
    const bool here = watched == WatchedFolder;
    if (!here && watched == WatchedAbove && CurrentFolder() == Folder) return;
    const bool waiting = !here && watched != WatchedAbove;
    if (waiting && !IsFolder(Folder)) {
        WatchFolder();
        return;
    }
    if (!FollowTimer.isActive()) FollowTimer.start();
}

// The selection and the place in the lists stay.
void LocalPanel::Follow()
{
    if (ReadingsUnderWay > 0) {
        FollowTimer.start();
        return;
    }
    RunHandler(Use.Errors, [this] {
        const QString before = Folder;
        QElapsedTimer taken;
        taken.start();
        if (const std::optional<Contents> contents = ReadFolder()) {
            Form.List1.UpdateEntries(contents->Files);
            Form.Label2_1.setText(QString::number(contents->Files.size()));
            if (Folder == before)
                UpdateFolders(contents->Folders);
            else
                ShowFolders(contents->Folders);
        }
        FollowTimer.setInterval(std::max(FollowDelay, RestAfterReading * std::chrono::milliseconds(taken.elapsed())));
        Use.Space.RefreshDiskSpace();
    });
}

/// Nothing when a newer reading has begun meanwhile: that one shows what it finds.
std::optional<LocalPanel::Contents> LocalPanel::ReadFolder()
{
    const int number = ++ReadingNumber;
    const QScopedValueRollback<int> underWay(ReadingsUnderWay, ReadingsUnderWay + 1);
    FindFolder();
    WatchFolder();
    Contents contents;
    try {
        FolderReader reader(Folder, Filter);
        QElapsedTimer sinceYield;
        sinceYield.start();
        while (reader.ReadOn(Slice)) {
            if (sinceYield.elapsed() < Slice.count()) continue;
            Use.Pause.Yield();
            if (ReadingNumber != number) return std::nullopt;
            sinceYield.restart();
        }
        contents = {reader.Files(), reader.Folders()};
    } catch (const RuntimeError& error) {
        Use.Errors.Caught(error);
        Complain(Folder);
    }
    // To show them is a step of its own.
    if (contents.Files.size() > ManyFiles) Use.Pause.Yield();
    if (ReadingNumber != number) return std::nullopt;
    return contents;
}

// A folder that was removed and made again under its name is a new one: the process must move into it.
void LocalPanel::FindFolder()
{
    if (const QString current = CurrentFolder(); !current.isEmpty())
        Folder = current;
    else
        Use.Errors.Attempt([this] { ChangeCurrentFolder(Folder); });
}

void LocalPanel::ShowFiles(const QStringList& files)
{
    Form.List1.SetEntries(files);
    Form.Label2_1.setText(QString::number(files.size()));
}

void LocalPanel::ShowFolders(const QStringList& subFolders)
{
    Folders = FolderLines(Folder, subFolders);
    QStringList names;
    for (const FolderLine& line : Folders) names += line.Name;
    Form.Dir1.SetEntries(names);
    const auto current = static_cast<int>(names.size() - subFolders.size()) - 1;
    Form.Dir1.SetListIndex(current);
    Form.Dir1.scrollTo(Form.Dir1.currentIndex());
}

void LocalPanel::UpdateFolders(const QStringList& subFolders)
{
    Folders = FolderLines(Folder, subFolders);
    QStringList names;
    for (const FolderLine& line : Folders) names += line.Name;
    Form.Dir1.UpdateEntries(names);
}

void LocalPanel::ShowDrive()
{
    const QStringList drives = Use.Drives();
    Form.Drive1.clear();
    for (const QString& drive : drives) Form.Drive1.addItem(ShownText(drive), drive);
    Form.Drive1.setCurrentIndex(static_cast<int>(drives.indexOf(DriveOf(Folder, drives))));
}

void LocalPanel::Complain(const QString& folder)
{
    Use.Status.Show(QStringLiteral("Cannot open folder %1: %2").arg(folder, Use.Errors.Description()));
}
