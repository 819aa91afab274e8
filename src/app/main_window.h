#pragma once

#include "session/follow_ups.h"

#include <QDateTime>
#include <QList>
#include <QMainWindow>
#include <QUrl>
#include <functional>
#include <memory>

class Asker;
class DisplayModes;
class Inet;
class Language;
class SettingsStore;
class TextInput;
struct ProgramValues;

/// What the main window needs of the world around it.
struct Surroundings {
    QString ProgramFolder;
    std::function<std::unique_ptr<Inet>()> MakeInet;  ///< called for Inet1, Inet2 and Inet3, in this order
    Asker* Questions = nullptr;                       ///< nobody: message boxes over the window
    TextInput* Prompt = nullptr;                      ///< nobody: the text input dialog over the window
    std::function<void()> Beep;
    std::function<void(const QString& path)> PlaySound;                        ///< begins to play a WAV file
    std::function<qint64(const QString& path)> OpenTextEditor;                 ///< as platform/text_editor.h
    std::function<void(QWidget& source, const QList<QUrl>& files)> DragFiles;  ///< as controls/desktop_drag.h
    std::function<void(const QString& address)> OpenAddress;                   ///< as platform/open_address.h
    DisplayModes* Screen = nullptr;  ///< the resolution of the desktop; has to be given
    QString MessageAddress;          ///< of the maker's message file
    std::function<QDateTime()> Now;
    std::function<void()> Quit;       ///< leaves the program's event loop
    std::function<void()> EndAtOnce;  ///< ends the process without any closing steps
};

/// The main window: its form, the three transfer components, and one object per subsystem with the table of who
/// listens to whom. User-interface thread. Everything it is given outlives it.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(ProgramValues& values, SettingsStore& settings, Language& texts, Surroundings around);
    ~MainWindow() override;

    /// Shows the about box for the time of the start, before the window is loaded.
    void Form_Initialize();

    /// Starts the program up, once, before the window is shown.
    void Form_Load();

    /// The window has been closed: the program is to end.
    bool Ended() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct Parts;

    void WireSession();
    void WirePanels();
    void WireSites();
    void WireDrags();
    void WireMenus();
    void WireOperations();
    void WirePacing();
    void WireSecondChannel();
    void WireSmallWindows();

    std::unique_ptr<Parts> Own;
};
