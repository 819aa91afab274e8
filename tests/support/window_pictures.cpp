// Takes pictures of the small windows, as they are in the program: window_pictures <folder> light|dark

#include "support/palettes.h"
#include "support/window_fixture.h"

#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QStyleFactory>

namespace {

void Take(QWidget& window, const QString& file)
{
    QApplication::processEvents();
    if (!window.grab().save(file)) qFatal("Cannot write %s", qPrintable(file));
}

/// Does something that puts a question, takes its picture and answers with Escape.
void TakeBox(const WindowFixture& program, const QString& file, const std::function<void()>& ask)
{
    QTimer::singleShot(200, program.Window.get(), [&] {
        for (QMessageBox* box : program.Window->findChildren<QMessageBox*>()) {
            Take(*box, file);
            box->reject();
        }
    });
    ask();
}

void TakeTicker(const WindowFixture& program, const QString& file)
{
    program.Inet3().DownloadBytes =
        "!Tolvane 3.3 is ready for you\nA line that is far too long for the place it has in "
        "the status line of the window\n";
    program.Choose("mnuMesgUpdate");
    while (!program.Control<QTimer>("Timer6").isActive()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    for (const char* part : {"1", "2"}) {
        QMetaObject::invokeMethod(&program.Control<QTimer>("Timer6"), "timeout");
        Take(*program.Window, file.arg(part));
    }
}

void TakeWindows(const QDir& folder, int base)
{
    WindowFixture program;
    program.Texts.LanguageBase = static_cast<std::int16_t>(base);
    program.UseMessageBoxes = true;
    program.Open();
    const auto file = [&](const QString& name) { return folder.filePath(QString("%1_%2.png").arg(name).arg(base)); };
    program.Choose("mnuAbout");
    Take(*program.Window->findChild<QWidget*>("Abouts"), file("about"));
    QTest::keyClick(program.Window->findChild<QWidget*>("Abouts"), Qt::Key_Escape);
    TakeBox(program, file("help"), [&] { program.Choose("mnuHelp2"); });
    TakeBox(program, file("free"), [&] { program.Choose("mnuFree"); });
    TakeBox(program, file("browser"), [&] { program.Click("Command3"); });
    TakeBox(program, file("offer"), [&] { program.Click("ads_29"); });
    program.Screen.Size = {1024, 768};
    QTest::mousePress(program.Window.get(), Qt::RightButton, {}, QPoint(12, 40));
    auto* menu = program.Window->findChild<QMenu*>("mnuScreen");
    if (menu == nullptr) qFatal("There is no menu");
    Take(*menu, file("resolution"));
    menu->close();
    program.Choose("mnuCommand");
    program.Inet2().Report(7);
    TakeTicker(program, file("ticker%1"));
    program.Close();
}

}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc < 3) qFatal("Usage: window_pictures <folder> light|dark");
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(QString(argv[2]) == "dark" ? DarkPalette() : QApplication::style()->standardPalette());
    const QDir folder(QDir(argv[1]).absolutePath());  // the program changes the current folder
    for (const int base : {1000, 5000, 7000}) TakeWindows(folder, base);
    return 0;
}
