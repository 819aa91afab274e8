#include "app/program_menu.h"

#include "app/program_values.h"
#include "shell/settings_store.h"

ProgramMenu::ProgramMenu(Controls controls, ProgramValues& values, SettingsStore& settings)
    : Form(controls), Values(values), Settings(settings)
{
}

void ProgramMenu::mnuSaveFolder_Click()
{
    ToggleOption(Values.Chosen.SaveLastFolder, Form.mnuSaveFolder, Settings, "DriveSav");
}

void ProgramMenu::mnuExit_Click()
{
    Form.Window.close();
}
