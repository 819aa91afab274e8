#include "app/windows_start.h"

#include <QEvent>
#include <QPalette>
#include <QSettings>
#include <utility>
#include <windows.h>

namespace {

constexpr auto SystemStyle = "windowsvista";
constexpr auto ToolkitStyle = "fusion";

/// A desktop in high contrast has colours of its own, which the system's style shows.
bool IsHighContrast()
{
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != 0 &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

/// The dark colours that the toolkit gives to buttons are made for a style of the system's that this one is not.
void GiveButtonsTheWindowsColours()
{
    constexpr int Lighter = 180;  // percent
    QPalette colours = QApplication::palette();
    colours.setColor(QPalette::Button, colours.color(QPalette::Window).lighter(Lighter));
    for (const char* kind : {"QAbstractButton", "QPushButton", "QToolButton", "QCheckBox", "QRadioButton", "QComboBox"})
        QApplication::setPalette(colours, kind);
}

}  // namespace

bool IsDesktopDark()
{
    const QSettings chosen("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                           QSettings::NativeFormat);
    return chosen.value("AppsUseLightTheme", 1).toInt() == 0 && !IsHighContrast();
}

void PrepareForWindows()
{
    SetDllDirectoryW(L"");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "windows:darkmode=2");
}

WindowsStyle::WindowsStyle(QApplication& program, std::function<bool()> isDark) : IsDark(std::move(isDark))
{
    program.installEventFilter(this);
    Apply();
}

// A style cannot be changed from within the event that tells of new colours.
bool WindowsStyle::eventFilter(QObject* watched, QEvent* event)
{
    const bool coloursChanged = event->type() == QEvent::ApplicationPaletteChange;
    if (coloursChanged && watched == qApp) QMetaObject::invokeMethod(this, &WindowsStyle::Apply, Qt::QueuedConnection);
    return false;
}

void WindowsStyle::Apply()
{
    const bool dark = IsDark();
    if (dark == Dark) return;
    Dark = dark;
    QApplication::setStyle(dark ? ToolkitStyle : SystemStyle);
    if (dark)
        GiveButtonsTheWindowsColours();
    else
        QApplication::setPalette(QPalette());
}
