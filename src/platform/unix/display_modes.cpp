#include "platform/display_modes.h"

#include "base/run_time_error.h"
#ifdef TOLVANE_X11
#include "platform/unix/x11_display_modes.h"
#endif

#include <QGuiApplication>
#include <QScreen>

namespace {

/// A desktop on which programs have no say in the resolution.
class FixedDisplayModes final : public DisplayModes {
public:
    explicit FixedDisplayModes(QString why) : Why(std::move(why)) {}

    QString Obstacle() const override { return Why; }

    QSize Current() const override
    {
        const QScreen* screen = QGuiApplication::primaryScreen();
        return screen == nullptr ? QSize() : screen->size() * screen->devicePixelRatio();
    }

    void Change(QSize) override { throw RuntimeError(Why); }

private:
    QString Why;
};

// An X11 program on a Wayland desktop talks to a stand-in for a display, whose modes are its own affair.
bool IsWayland()
{
    return QGuiApplication::platformName().startsWith(u"wayland") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland";
}

}  // namespace

std::unique_ptr<DisplayModes> DesktopDisplayModes()
{
    if (IsWayland())
        return std::make_unique<FixedDisplayModes>("On a Wayland desktop only its own settings change the resolution.");
#ifdef TOLVANE_X11
    if (QGuiApplication::platformName() == u"xcb") return std::make_unique<X11DisplayModes>();
#endif
    return std::make_unique<FixedDisplayModes>("The resolution of this display cannot be changed by programs.");
}
