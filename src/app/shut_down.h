#pragma once

#include <QString>
#include <functional>

class Asker;
class SettingsStore;
class TextInput;
class Waits;
struct ProgramValues;

/// Closes every window of the program but the one of this name.
void UnloadOtherForms(const QString& name);

/// What runs when the main window closes, for whatever reason. Nothing is asked and closing is never refused.
/// User-interface thread.
class ShutDown {
public:
    struct Tools {
        ProgramValues& Values;
        SettingsStore& Settings;
        Waits& Pause;
        Asker& Questions;
        TextInput& Prompt;
        std::function<void()> Quit;  ///< leaves the program's event loop
    };

    explicit ShutDown(Tools tools);

    /// Stores the connection and the folder, closes the other windows and ends every wait and question.
    /// Further calls do nothing.
    void Form_QueryUnload();

private:
    void StoreSession();

    Tools Use;
    bool Done = false;
};
