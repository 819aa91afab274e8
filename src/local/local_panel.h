#pragma once

#include "base/run_time_error.h"
#include "local/file_pattern.h"
#include "local/folder_delegate.h"
#include "local/folder_lines.h"

#include <QComboBox>
#include <QFileSystemWatcher>
#include <QLabel>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

class DiskSpace;
class ListBox;
class StatusLine;
class Waits;

/// The local panel: drives, folders and the files that match the filter. Its folder is the process's current folder,
/// and it follows what other programs change there. User-interface thread.
class LocalPanel final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QComboBox& Drive1;
        ListBox& Dir1;      ///< the folders above, the current one, and its sub-folders
        ListBox& List1;     ///< the files
        QComboBox& Combo2;  ///< the filter, typed or picked
        QLabel& Label2_1;   ///< the count of the files
    };

    struct Tools {
        DiskSpace& Space;
        StatusLine& Status;
        Waits& Pause;
        ErrorRecord& Errors;
        std::function<QStringList()> Drives;  ///< tells what Drive1 offers
    };

    LocalPanel(Controls controls, Tools tools);

    /// Shows the process's current folder, as at start-up.
    void Open();

    /// Reads the current folder again and shows its files that match the filter. Complete when it returns; events are
    /// handled in between when the folder is large. A folder that cannot be read shows no files, and the status line
    /// says why. Throws ProgramEnding.
    void RefreshList();

    void Dir1_DblClick();  ///< moves to the highlighted folder; also by the Enter key
    void Dir1_Change();    ///< the current folder has changed
    void Drive1_Change();  ///< moves to the chosen drive
    void Combo2_Change();  ///< applies the filter that has been typed, once it is confirmed by the Enter key
    void Combo2_Click();   ///< applies the filter that has been picked

private:
    struct Contents {
        QStringList Files;
        QStringList Folders;
    };

    void WatchFolder();
    void WaitForFolder();
    void FolderTouched(const QString& watched);
    void Follow();
    bool MoveTo(const QString& folder);
    void FolderChanged();
    void ApplyFilter();
    std::optional<Contents> ReadFolder();
    void FindFolder();
    void ShowFiles(const QStringList& files);
    void ShowFolders(const QStringList& subFolders);
    void UpdateFolders(const QStringList& subFolders);
    void ShowDrive();
    void Complain(const QString& folder);

    Controls Form;
    Tools Use;
    std::vector<FolderLine> Folders;  ///< what Dir1 shows, row by row
    FolderDelegate Delegate;
    FilePattern Filter;
    QString Folder;         ///< the current folder when it was last read
    int ReadingNumber = 0;  ///< counts readings: one that is overtaken by a newer shows nothing
    int ReadingsUnderWay = 0;
    QFileSystemWatcher Watcher;
    QString WatchedFolder;  ///< the current one, as the watcher was told of it
    QString WatchedAbove;
    QTimer FollowTimer;  ///< gathers changes that come together
};
