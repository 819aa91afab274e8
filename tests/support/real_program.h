#pragma once

#include "app/main_window.h"
#include "app/program_values.h"
#include "i18n/language.h"
#include "inet/transfer_component.h"
#include "platform/current_folder.h"
#include "session/waits.h"
#include "shell/settings_store.h"
#include "support/fake_display.h"
#include "support/list_mouse.h"
#include "support/real_servers.h"
#include "support/scripted_asker.h"
#include "support/scripted_text_input.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <memory>
#include <vector>

/// The program with everything real but its questions and its noises. User-interface thread.
class RealProgram {
public:
    RealProgram() { ChangeCurrentFolder(Local.path()); }

    ~RealProgram()
    {
        Close();
        ChangeCurrentFolder(Before);
    }

    RealProgram(const RealProgram&) = delete;
    RealProgram& operator=(const RealProgram&) = delete;

    void Open()
    {
        Values = std::make_unique<ProgramValues>();
        Settings = std::make_unique<SettingsStore>(Home.filePath("Tolvane.conf"));
        Surroundings around;
        around.ProgramFolder = Home.path();
        Inets.clear();
        Questions.Ended = false;
        around.MakeInet = [this] {
            auto inet = std::make_unique<TransferComponent>();
            Inets.push_back(inet.get());
            return inet;
        };
        around.Questions = &Questions;
        Prompt = std::make_unique<ScriptedTextInput>(Values->InputText);
        around.Prompt = Prompt.get();
        around.Beep = [] {};
        around.PlaySound = [](const QString&) {};
        around.OpenTextEditor = [this](const QString& path) -> qint64 {
            Edited += path;
            return 4711;
        };
        around.DragFiles = [](QWidget&, const QList<QUrl>&) {};
        around.OpenAddress = [](const QString&) {};
        around.Screen = &Screen;
        around.MessageAddress = MessageAddress;
        around.Now = &QDateTime::currentDateTime;
        around.Quit = [] {};
        around.EndAtOnce = [] {};
        Window = std::make_unique<MainWindow>(*Values, *Settings, Texts, around);
        Window->Form_Load();
        Window->show();
        QVERIFY(QTest::qWaitForWindowExposed(Window.get()));
    }

    void Close()
    {
        if (Window) Window->close();
        Window.reset();
        Settings.reset();
    }

    template <typename Widget>
    Widget& Control(const char* name) const
    {
        auto* control = Window->findChild<Widget*>(name);
        if (control == nullptr) qFatal("The window has no control %s of that type", name);
        return *control;
    }

    void Click(const char* name) const { QTest::mouseClick(&Control<QWidget>(name), Qt::LeftButton); }

    static void Type(QWidget& field, const QString& text)
    {
        QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&field, text);
    }

    /// Fills the connection fields and presses the button.
    void Connect(const RealServer& server, const QString& folder = {}) const
    {
        Type(*Control<QComboBox>("txtURL").lineEdit(), server.Url() + folder);
        Type(Control<QLineEdit>("txtUserName"), server.User());
        Type(Control<QLineEdit>("txtPassword"), server.Password());
        Click("cmdConnect");
    }

    /// The component of the session.
    Inet& Inet1() const { return *Inets.at(0); }

    /// Whether the session's component has nothing to do.
    bool IsIdle() const { return !Inet1().StillExecuting(); }

    QStringList Log() const
    {
        QStringList lines;
        const auto* model = Control<QAbstractItemView>("List2").model();
        for (int row = 0; row < model->rowCount(); ++row) lines += model->index(row, 0).data().toString();
        return lines;
    }

    ListBox& Remote() const { return Control<ListBox>("lstRemoteFiles"); }

    ListBox& Files() const { return Control<ListBox>("List1"); }

    QString Status() const { return Control<QLabel>("sbFTP").text(); }

    /// The row whose line ends in a name; -1 when there is none.
    static int RowOf(const ListBox& list, const QString& name)
    {
        for (int row = 0; row < list.Count(); ++row)
            if (list.Entry(row) == name || list.Entry(row).endsWith(u' ' + name)) return row;
        return -1;
    }

    static QList<int> RowsOf(const ListBox& list, const QStringList& names)
    {
        QList<int> rows;
        for (const QString& name : names) rows += RowOf(list, name);
        return rows;
    }

    QTemporaryDir Local;
    ScriptedAsker Questions;
    std::unique_ptr<ScriptedTextInput> Prompt;
    FakeDisplay Screen;
    QString MessageAddress;  ///< where the program looks for messages
    QStringList Edited;      ///< the paths that the text editor was started with
    std::unique_ptr<MainWindow> Window;

private:
    QString Before = CurrentFolder();
    QTemporaryDir Home;
    Language Texts;
    std::unique_ptr<ProgramValues> Values;
    std::unique_ptr<SettingsStore> Settings;
    std::vector<Inet*> Inets;
};
