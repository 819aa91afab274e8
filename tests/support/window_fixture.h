#pragma once

#include "app/main_window.h"
#include "app/program_values.h"
#include "i18n/language.h"
#include "platform/current_folder.h"
#include "session/waits.h"
#include "shell/settings_store.h"
#include "support/fake_display.h"
#include "support/recording_inet.h"
#include "support/scripted_asker.h"
#include "support/scripted_text_input.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// The real main window with recording components, a settings file, a program folder and a local folder of its own.
/// Members of the window live from Open to Close. User-interface thread.
class WindowFixture {
public:
    WindowFixture() { ChangeCurrentFolder(LocalFolder()); }

    /// With a program folder that was there before and stays.
    explicit WindowFixture(QString home) : WindowFixture() { LastingHome = std::move(home); }

    ~WindowFixture()
    {
        Close();
        ChangeCurrentFolder(Before);
    }

    WindowFixture(const WindowFixture&) = delete;
    WindowFixture& operator=(const WindowFixture&) = delete;

    QString HomeFolder() const { return LastingHome.isEmpty() ? Home.path() : LastingHome; }

    QString LocalFolder() const { return Local.path(); }

    QString SettingsFile() const { return Configuration.filePath("Tolvane.conf"); }

    /// Writes a setting before the window opens; Setting reads one at any time, as the next start will.
    void Store(const QString& key, const QString& value)
    {
        SettingsStore store(SettingsFile());
        store.Write(key, value);
        store.Save();
    }

    QString Setting(const QString& key) const { return SettingsStore(SettingsFile()).Read(key, "(absent)"); }

    /// Starts the program: loads the main window and shows it.
    void Open()
    {
        Values = std::make_unique<ProgramValues>();
        Questions = {};
        Prompt = std::make_unique<ScriptedTextInput>(Values->InputText);
        Sounds.clear();
        Edited.clear();
        Opened.clear();
        Ends = 0;
        Settings = std::make_unique<SettingsStore>(SettingsFile());
        Inets.clear();
        Beeps = 0;
        Quits = 0;
        Window = std::make_unique<MainWindow>(*Values, *Settings, Texts, Around());
        Window->Form_Load();
        Window->show();
        QVERIFY(QTest::qWaitForWindowExposed(Window.get()));
    }

    /// Ends the program as its user does.
    void Close()
    {
        if (Window) Window->close();
        Window.reset();
        Settings.reset();
    }

    void Restart()
    {
        Close();
        Open();
    }

    /// The control of a given name.
    template <typename Widget>
    Widget& Control(const char* name) const
    {
        auto* control = Window->findChild<Widget*>(name);
        if (control == nullptr) qFatal("The window has no control %s of that type", name);
        return *control;
    }

    QAction& Entry(const char* name) const { return Control<QAction>(name); }

    /// Chooses an entry of the menu.
    void Choose(const char* name) const { Entry(name).trigger(); }

    /// Presses a control with the left mouse button and lets go.
    void Click(const char* name) const { QTest::mouseClick(&Control<QWidget>(name), Qt::LeftButton); }

    QString Status() const { return Control<QLabel>("sbFTP").text(); }

    /// The lines of the activity log.
    QStringList Log() const
    {
        QStringList lines;
        const auto* model = Control<QAbstractItemView>("List2").model();
        for (int row = 0; row < model->rowCount(); ++row) lines += model->index(row, 0).data().toString();
        return lines;
    }

    RecordingInet& Inet1() const { return *Inets.at(0); }

    RecordingInet& Inet2() const { return *Inets.at(1); }

    RecordingInet& Inet3() const { return *Inets.at(2); }

    ScriptedAsker Questions;                          ///< lives on: a test may look at what was asked during the close
    std::function<std::unique_ptr<Inet>()> MakeInet;  ///< when set, makes the components instead of the recording ones
    bool UseMessageBoxes = false;                     ///< questions are put with real boxes instead
    bool UseDialogs = false;  ///< texts are asked for with the real dialog instead of with the script
    std::unique_ptr<ProgramValues> Values;
    std::unique_ptr<SettingsStore> Settings;
    std::unique_ptr<ScriptedTextInput> Prompt;
    std::unique_ptr<MainWindow> Window;
    Language Texts;
    int Beeps = 0;
    int Quits = 0;
    std::function<void()> End;  ///< when set, what else is done to end the process at once
    int Ends = 0;               ///< how often the process would have been ended at once
    QStringList Sounds;         ///< the files that were played
    QStringList Edited;         ///< the paths that the text editor was started with
    QList<QUrl> Dragged;        ///< the files that were dragged out of the window
    QStringList Opened;         ///< the addresses that were handed to the browser
    FakeDisplay Screen;         ///< the desktop's screen
    QString EditorComplaint;    ///< when set, no editor can be started, for this reason
    QDateTime Now{QDate(2024, 3, 9), QTime(17, 5, 8)};

private:
    Surroundings Around()
    {
        Surroundings around;
        around.ProgramFolder = HomeFolder();
        around.MakeInet = [this]() -> std::unique_ptr<Inet> {
            if (MakeInet) return MakeInet();
            auto inet = std::make_unique<RecordingInet>();
            Inets.push_back(inet.get());
            return inet;
        };
        around.Questions = UseMessageBoxes ? nullptr : &Questions;
        around.Prompt = UseDialogs ? nullptr : Prompt.get();
        around.Beep = [this] { ++Beeps; };
        around.PlaySound = [this](const QString& path) { Sounds += path; };
        around.OpenTextEditor = [this](const QString& path) -> qint64 {
            if (!EditorComplaint.isEmpty()) throw RuntimeError(EditorComplaint);
            Edited += path;
            return 4711;
        };
        around.DragFiles = [this](QWidget&, const QList<QUrl>& files) { Dragged += files; };
        around.OpenAddress = [this](const QString& address) { Opened += address; };
        around.Screen = &Screen;
        around.MessageAddress = "https://maker.test/msg.txt";
        around.Now = [this] { return Now; };
        around.Quit = [this] { ++Quits; };
        around.EndAtOnce = [this] {
            ++Ends;
            if (End) End();
        };
        return around;
    }

    QString Before = CurrentFolder();
    QTemporaryDir Home;
    QString LastingHome;
    QTemporaryDir Local;
    QTemporaryDir Configuration;
    std::vector<RecordingInet*> Inets;
};
