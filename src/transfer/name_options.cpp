#include "transfer/name_options.h"

#include "base/conversions.h"
#include "platform/short_path.h"
#include "shell/settings_store.h"

NameOptions::NameOptions(Controls controls, Options& options, SettingsStore& settings)
    : Form(controls), Chosen(options), Settings(settings)
{
}

QString NameOptions::Converted(const QString& name) const
{
    QString converted = name;
    if (Chosen.ShortNames) converted = Trimmed(ShortName(converted));
    if (Chosen.LowerCaseNames) converted = Trimmed(converted.toLower());
    return converted;
}

bool NameOptions::AsksAboutDuplicates() const
{
    return Form.Check2.isChecked();
}

void NameOptions::mnuNT_Click()
{
    ToggleOption(Chosen.ShortNames, Form.mnuNT, Settings, "NT");
}

void NameOptions::mnuConvertLower_Click()
{
    ToggleOption(Chosen.LowerCaseNames, Form.mnuConvertLower, Settings, "LowerCase");
}

void NameOptions::mnuAlarm_Click()
{
    ToggleOption(Chosen.AlarmOn, Form.mnuAlarm, Settings, "Alarm");
}

void NameOptions::Image3_Click()
{
    Form.Check2.click();
}
