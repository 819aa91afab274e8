#include "shell/connection_values.h"

#include "shell/settings_store.h"

void StoreConnectionValues(const ConnectionValues& values, SettingsStore& settings)
{
    settings.Write("SaveURL", values.SavedUrl);
    settings.Write("SavePass", values.SavedPassword);
    settings.Write("SaveUser", values.SavedUser);
    settings.Write("SaveProxy", values.SavedProxy);
}
