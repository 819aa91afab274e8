#pragma once

#include "base/run_time_error.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>

class ActivityLog;
class Asker;
class ListBox;
class PictureViewer;
class StatusLine;
class TextInput;
class Waits;

/// The full name of a file in a folder, with a single separator between the two in the root of a drive too. Pure.
QString FullName(const QString& folder, const QString& name);

/// How a file is viewed: by what its name ends in, capitals or not. Pure.
enum class ViewKind { Picture, Text, None };
ViewKind ViewKindOf(const QString& fullName);

/// What the buttons below the local files do with the highlighted ones: view, size and date, erase, rename. What the
/// disk refuses is told in the status line. User-interface thread.
class LocalOperations final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        StatusLine& Status;
        ActivityLog& Log;
        Waits& Pause;
        Asker& Questions;
        TextInput& Prompt;
        QString& InputText;  ///< the answer of the dialog
        PictureViewer& Viewer;
        const bool& ViewerOpen;  ///< the viewer follows the list
        ErrorRecord& Errors;
        std::function<void()> RefreshList;
        std::function<qint64(const QString& path)> OpenTextEditor;  ///< as platform/text_editor.h
        std::function<void()> Beep;
    };

    LocalOperations(ListBox& list1, Tools tools);

    void Command15_Click();  ///< views the highlighted file: a picture in the viewer, a text in the text editor
    void Command19_Click();  ///< tells the size, date and time of the highlighted file
    void Command20_Click();  ///< asks, then erases the selected files
    void Command21_Click();  ///< asks for another name for the first selected file
    void List1_Click();      ///< an open viewer shows the file that was clicked

    /// The addresses of the selected files, for other programs.
    QList<QUrl> SelectedFiles() const;

private:
    template <typename Body>
    void Handle(Body&& body);
    QString Highlighted() const;
    void View(const QString& fullName);
    void TellSize(const QString& name);
    void EraseSelection();
    void Erase(const QStringList& names);
    void EraseOne(const QString& folder, const QString& name);
    void RenameSelected();
    void Complain(const QString& sentence);

    ListBox& List1;
    Tools Use;
};
