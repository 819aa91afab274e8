#include "dialogs/screen_res.h"

#include "base/run_time_error.h"
#include "platform/display_modes.h"
#include "shell/asker.h"

#include <QWindow>

namespace {

constexpr auto SizeOfEntry = "Resolution";

}  // namespace

ScreenRes::ScreenRes(QWidget& mainWindow, Tools tools) : MainWindow(mainWindow), Use(tools) {}

void ScreenRes::PopUp(const QPoint& at)
{
    if (!Window) Form_Load();
    mnuScreen->popup(at);
}

void ScreenRes::Form_Load()
{
    Window = new QWidget(&MainWindow, Qt::Window);
    Window->setObjectName("ScreenRes");
    mnuScreen = new QMenu(Window);
    mnuScreen->setObjectName("mnuScreen");
    mnuScreen->setToolTipsVisible(true);
    AddResolution("Res640x480", "640x480", {640, 480});
    AddResolution("Res800x600", "800x600", {800, 600});
    AddResolution("Res1024x768", "1024x768", {1024, 768});
    AddResolution("Res1152x864", "1152x864", {1152, 864});
    mnuScreen->addSeparator()->setObjectName("sep1");
    QAction* cancel = mnuScreen->addAction("&Cancel");
    cancel->setObjectName("mnuCancel");
    connect(cancel, &QAction::triggered, this, &ScreenRes::mnuCancel_Click);
    MarkCurrent();
    // The menu belongs to a window that is never shown, but appears over the main window.
    mnuScreen->winId();
    if (mnuScreen->windowHandle() != nullptr) mnuScreen->windowHandle()->setTransientParent(MainWindow.windowHandle());
}

void ScreenRes::AddResolution(const QString& name, const QString& caption, QSize size)
{
    QAction* entry = mnuScreen->addAction(caption);
    entry->setObjectName(name);
    entry->setCheckable(true);
    entry->setProperty(SizeOfEntry, size);
    const QString obstacle = Use.Screen.Obstacle();
    entry->setEnabled(obstacle.isEmpty());
    entry->setToolTip(obstacle);
    connect(entry, &QAction::triggered, this, [this, size] { Pick(size); });
}

void ScreenRes::MarkCurrent()
{
    const QSize current = Use.Screen.Current();
    for (QAction* entry : mnuScreen->actions())
        if (entry->isCheckable()) entry->setChecked(entry->property(SizeOfEntry).toSize() == current);
}

// The marks show the resolution from before the change.
void ScreenRes::Pick(QSize size)
{
    MarkCurrent();
    ChangeResolution(size);
}

void ScreenRes::ChangeResolution(QSize size)
{
    if (Use.Errors.Attempt([&] { Use.Screen.Change(size); })) return;
    Use.Questions.Ask({"Resolution not supported!", "Resolution Error!", Question::NoIcon, Question::Ok});
}

void ScreenRes::mnuCancel_Click()
{
    if (Window) Window->deleteLater();
    Window.clear();
    mnuScreen.clear();
}
