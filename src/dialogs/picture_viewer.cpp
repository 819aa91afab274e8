#include "dialogs/picture_viewer.h"

#include "base/byte_text.h"

#include <QScreen>

namespace {

/// The toolkit takes "[*]" in a title for the place of its own mark; two of them are one.
QString Title(const QString& fullName)
{
    return ShownText(fullName).replace("[*]", "[*][*]");
}

}  // namespace

PictureViewer::PictureViewer(QWidget& mainWindow, bool& viewerOpen) : MainWindow(mainWindow), ViewerOpen(viewerOpen)
{
    Decoder.setMaxThreadCount(1);  // one picture's memory at a time
}

PictureViewer::~PictureViewer()
{
    Decoder.clear();
    Decoder.waitForDone();
    delete Window;
}

void PictureViewer::Show(const QString& fullName)
{
    const bool following = ViewerOpen;
    ViewerOpen = true;
    if (!Window) Open(!following);
    Window->setWindowTitle(Title(fullName));
    Load(fullName);
}

void PictureViewer::Open(bool takesFocus)
{
    Window = new PicView(MainWindow);
    connect(Window, &PicView::CloseClicked, this, &PictureViewer::Command1_Click);
    connect(Window, &PicView::Closed, this, &PictureViewer::Unload);
    Window->setAttribute(Qt::WA_ShowWithoutActivating, !takesFocus);
    Window->show();
}

// A decoder at work cannot be stopped, so what waits behind it is dropped when something newer is asked for.
void PictureViewer::Load(const QString& fullName)
{
    const int number = ++Number;
    const QSize room = Window->Room();
    const qreal ratio = Window->devicePixelRatioF();
    Decoder.clear();
    Decoder.start([this, number, fullName, room, ratio] {
        const LoadedPicture picture = LoadPicture(fullName, room, ratio);
        QMetaObject::invokeMethod(
            this, [this, number, fullName, picture] { Arrived(number, fullName, picture); }, Qt::QueuedConnection);
    });
}

void PictureViewer::Arrived(int number, const QString& fullName, const LoadedPicture& picture)
{
    if (Window && number == Number) Window->Take(fullName, picture);
}

// Called from within the window's own events.
void PictureViewer::Unload()
{
    ++Number;
    if (!Window) return;
    Window->hide();
    Window->deleteLater();
    Window.clear();
}

void PictureViewer::Command1_Click()
{
    ViewerOpen = false;
    Unload();
}
