#pragma once

#include "dialogs/pic_view.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QThreadPool>

/// The picture viewer: a small modeless window, PicView, beside the main window's left edge. Pictures (.bmp, .gif, .jpg
/// and .ico, by their content) are decoded beside the user-interface thread, one at a time; a file that cannot be shown
/// gives a sentence in the window. User-interface thread.
class PictureViewer final : public QObject {
    Q_OBJECT

public:
    /// `viewerOpen` is ViewerOpen, a value of the whole program: while it is set the viewer follows the local list.
    PictureViewer(QWidget& mainWindow, bool& viewerOpen);
    ~PictureViewer() override;
    PictureViewer(const PictureViewer&) = delete;
    PictureViewer& operator=(const PictureViewer&) = delete;

    /// Shows a file by its full name, in the window that is open or in a new one, and sets ViewerOpen. The window
    /// takes the focus only when it is opened while ViewerOpen is not set yet.
    void Show(const QString& fullName);

    /// Takes the window away; ViewerOpen stays, as it does when the window is closed by its title bar.
    void Unload();

    void Command1_Click();  ///< clears ViewerOpen and takes the window away

private:
    void Open(bool takesFocus);
    void Load(const QString& fullName);
    void Arrived(int number, const QString& fullName, const LoadedPicture& picture);

    QWidget& MainWindow;
    bool& ViewerOpen;
    QPointer<PicView> Window;  ///< belongs to the main window
    int Number = 0;            ///< counts the files that were asked for: one overtaken by a newer is dropped
    QThreadPool Decoder;
};
