#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QSize>

class Asker;
class DisplayModes;
class ErrorRecord;

/// The window ScreenRes, of which only the menu mnuScreen is ever seen: it changes the resolution of the desktop.
/// User-interface thread.
class ScreenRes final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        DisplayModes& Screen;
        Asker& Questions;
        ErrorRecord& Errors;
    };

    ScreenRes(QWidget& mainWindow, Tools tools);

    /// Shows the menu at a place of the screen. The window is loaded for it when it is not there.
    void PopUp(const QPoint& at);

    void mnuCancel_Click();  ///< unloads the window

private:
    void Form_Load();
    void AddResolution(const QString& name, const QString& caption, QSize size);
    void MarkCurrent();
    void Pick(QSize size);
    void ChangeResolution(QSize size);

    QWidget& MainWindow;
    Tools Use;
    QPointer<QWidget> Window;  ///< belongs to the main window
    QPointer<QMenu> mnuScreen;
};
