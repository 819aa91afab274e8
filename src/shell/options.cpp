#include "shell/options.h"

void ToggleOption(bool& flag, QAction& entry, SettingsStore& settings, const QString& key)
{
    flag = !entry.isChecked();
    settings.WriteBoolean(key, flag);
    entry.setChecked(flag);
}
