#include "platform/display_modes.h"

#include <windows.h>

namespace {

class WindowsDisplayModes final : public DisplayModes {
public:
    QString Obstacle() const override { return {}; }

    QSize Current() const override
    {
        DEVMODEW mode = {};
        mode.dmSize = sizeof mode;
        if (EnumDisplaySettingsW(nullptr, ENUM_CURRENT_SETTINGS, &mode) == 0) return {};
        return {static_cast<int>(mode.dmPelsWidth), static_cast<int>(mode.dmPelsHeight)};
    }

    // The record keeps what the last mode left in it; only the width and the height are handed over.
    void Change(QSize size) override
    {
        DEVMODEW mode = {};
        mode.dmSize = sizeof mode;
        for (DWORD number = 0; EnumDisplaySettingsW(nullptr, number, &mode) != 0; ++number) {}
        mode.dmFields = DM_PELSWIDTH | DM_PELSHEIGHT;
        mode.dmPelsWidth = static_cast<DWORD>(size.width());
        mode.dmPelsHeight = static_cast<DWORD>(size.height());
        (void)ChangeDisplaySettingsW(&mode, 0);
    }
};

}  // namespace

std::unique_ptr<DisplayModes> DesktopDisplayModes()
{
    return std::make_unique<WindowsDisplayModes>();
}
