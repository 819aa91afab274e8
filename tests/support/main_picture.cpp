// Takes the picture that the README opens with, of the program in the middle of a session: main_picture <file>

#include "support/list_mouse.h"
#include "support/window_fixture.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QStyleFactory>

namespace {

const QStringList LocalFiles{"about us.html",   "contact.html", "garden in may.jpg",  "garden in june.jpg",
                             "guest book.html", "index.html",   "letter to Anna.txt", "logo.gif",
                             "price list.txt",  "river.mp3",    "style.css",          "summer fair.doc"};

const QStringList RemoteLines{
    "drwxr-xr-x    2 ann      web          4096 Mar 02 11:40 archive",
    "drwxr-xr-x    3 ann      web          4096 Mar 08 09:12 pictures",
    "drwxr-xr-x    2 ann      web          4096 Feb 21 16:31 sounds",
    "-rw-r--r--    1 ann      web          5318 Mar 01 10:02 about us.html",
    "-rw-r--r--    1 ann      web          2244 Mar 01 10:02 contact.html",
    "-rw-r--r--    1 ann      web        482113 Mar 08 09:10 garden in may.jpg",
    "-rw-r--r--    1 ann      web          7730 Mar 09 08:55 guest book.html",
    "-rw-r--r--    1 ann      web          6021 Mar 09 16:58 index.html",
    "-rw-r--r--    1 ann      web          3107 Feb 11 08:30 logo.gif",
    "-rw-r--r--    1 ann      web           918 Feb 11 08:30 robots.txt",
    "-rw-r--r--    1 ann      web      15728640 Mar 05 20:17 video.mpg",
};

/// A folder with the files of somebody's web site. Says where it is.
QString MakeSite(const QString& home)
{
    QDir folder(home);
    if (folder.exists()) qFatal("%s is in the way", qPrintable(home));
    for (const char* path : {"Documents", "Music", "Web site/archive", "Web site/pictures"}) folder.mkpath(path);
    folder.cd("Web site");
    for (const QString& name : LocalFiles) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly)) qFatal("Cannot write %s", qPrintable(file.fileName()));
        file.write(QByteArray(4096, ' '));
    }
    return folder.path();
}

void Connect(const WindowFixture& program)
{
    for (const char* operation : {"DIR", "LS"}) program.Inet1().Replies[operation] = RemoteLines.join("\r\n") + "\r\n";
    program.Control<QComboBox>("txtURL").setEditText("ftp://ftp.example.org/web");
    program.Control<QLineEdit>("txtUserName").setText("ann");
    program.Control<QLineEdit>("txtPassword").setText("not shown");
    program.Click("cmdConnect");
    while (program.Inet1().StillExecuting() || program.Control<ListBox>("lstRemoteFiles").Count() == 0)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Chooses what to receive next.
void Choose(const WindowFixture& program)
{
    const auto& remote = program.Control<ListBox>("lstRemoteFiles");
    ListMouse::Select(remote, {5, 6, 8});
    program.Inet1().Report(Inet::Connected);
}

}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc < 2) qFatal("Usage: main_picture <file>");
    const QString file = QFileInfo(argv[1]).absoluteFilePath();  // the program changes the current folder
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(QApplication::style()->standardPalette());
    WindowFixture program;
    const QString home = QDir::tempPath() + "/ann";
    program.Store("SaveDrive", MakeSite(home));
    program.Open();
    Connect(program);
    Choose(program);
    QApplication::processEvents();
    if (!program.Window->grab().save(file)) qFatal("Cannot write %s", qPrintable(file));
    program.Close();
    QDir(home).removeRecursively();
    return 0;
}
