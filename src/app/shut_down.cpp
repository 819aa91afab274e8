#include "app/shut_down.h"

#include "app/program_values.h"
#include "dialogs/text_input.h"
#include "platform/current_folder.h"
#include "platform/short_path.h"
#include "session/waits.h"
#include "shell/asker.h"
#include "shell/settings_store.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <utility>

void UnloadOtherForms(const QString& name)
{
    // Closing one window may take another with it.
    QList<QPointer<QWidget>> windows;
    for (QWidget* window : QApplication::topLevelWidgets()) windows += window;
    for (const QPointer<QWidget>& window : windows)
        if (window != nullptr && window->isVisible() && window->objectName() != name) window->close();
}

ShutDown::ShutDown(Tools tools) : Use(std::move(tools)) {}

void ShutDown::Form_QueryUnload()
{
    if (std::exchange(Done, true)) return;
    StoreSession();
    // A dialog that closes with the other windows leaves its answer as it was; the end of the program is a cancel.
    Use.Prompt.End();
    // A window that closes may have opened another.
    UnloadOtherForms("Tolvane");
    UnloadOtherForms("Tolvane");
    Use.Pause.End();
    Use.Questions.End();
    Use.Quit();
}

void ShutDown::StoreSession()
{
    if (Use.Values.Chosen.SaveAllInformation) StoreConnectionValues(Use.Values.Connection, Use.Settings);
    Use.Values.Start.ExitFolder = ShortPath(CurrentFolder());
    Use.Settings.Write("SaveDrive", Use.Values.Start.ExitFolder);
    Use.Settings.Save();
}
