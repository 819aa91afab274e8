#pragma once

#include <QDialog>
#include <QPointer>

class Language;
class WebPages;

/// The about box: the window Abouts, shown for a moment while the program starts, and by its entry of the help menu.
/// Modeless. User-interface thread.
class AboutBox final : public QObject {
    Q_OBJECT

public:
    AboutBox(QWidget& mainWindow, const Language& texts, WebPages& pages);

    void mnuAbout_Click();

    /// Shows the box in the middle of the screen without taking the focus, before the main window is there.
    void ShowAtStart();

    void Command1_Click();  ///< unloads the box
    void Timer1_Timer();    ///< the time after start-up is over: unloads the box

private:
    void Form_Load();

    QWidget& MainWindow;
    const Language& Texts;
    WebPages& Pages;
    QPointer<QDialog> Window;  ///< belongs to the main window
};
