#include "platform/unix/x11_display_modes.h"

#include "base/run_time_error.h"

#include <QPoint>
#include <QRect>
#include <algorithm>
#include <cstdlib>
#include <vector>
#include <xcb/randr.h>
#include <xcb/xcb.h>

namespace {

struct Freed {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Freed>;

[[noreturn]] void Fail()
{
    throw RuntimeError("The display cannot change its resolution.");
}

/// The reply to a request; there has to be one.
template <typename Reply>
Owned<Reply> Had(Reply* reply)
{
    if (reply == nullptr) Fail();
    return Owned<Reply>(reply);
}

/// What a CRTC, the part that feeds a monitor, shows of the screen.
struct Feed {
    xcb_randr_crtc_t Crtc = XCB_NONE;
    xcb_randr_output_t Output = XCB_NONE;
    QRect Area;
    std::uint16_t Rotation = XCB_RANDR_ROTATION_ROTATE_0;
};

bool IsTurned(std::uint16_t rotation)
{
    return (rotation & (XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270)) != 0;
}

double Frequency(const xcb_randr_mode_info_t& mode)
{
    const double dots = static_cast<double>(mode.htotal) * mode.vtotal;
    return dots > 0 ? mode.dot_clock / dots : 0;
}

/// A visit to the display. Throws RuntimeError where there is no display, no extension or no lit monitor.
class Visit {
public:
    explicit Visit(const QByteArray& display)
        : Wire(xcb_connect(display.isEmpty() ? nullptr : display.constData(), &Number), &xcb_disconnect)
    {
        if (xcb_connection_has_error(X()) != 0) Fail();
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(X()));
        for (int left = Number; left > 0 && screens.rem > 1; --left) xcb_screen_next(&screens);
        Screen = screens.data;
        CheckExtension();
        Resources =
            Had(xcb_randr_get_screen_resources_reply(X(), xcb_randr_get_screen_resources(X(), Screen->root), nullptr));
        FindFeeds();
    }

    QSize Current() const { return Main.Area.size(); }

    void Change(QSize size) const;

private:
    xcb_connection_t* X() const { return Wire.get(); }

    void CheckExtension() const;
    void FindFeeds();
    Owned<xcb_randr_get_output_info_reply_t> InfoOf(xcb_randr_output_t output) const;
    xcb_randr_mode_t ModeOf(QSize size) const;
    QSize ScreenSize() const;
    bool SetMode(xcb_randr_mode_t mode) const;
    bool SetScreenSize(QSize size) const;

    int Number = 0;
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> Wire;
    const xcb_screen_t* Screen = nullptr;
    Owned<xcb_randr_get_screen_resources_reply_t> Resources;
    std::vector<Feed> Others;  ///< the feeds of further monitors
    Feed Main;
};

void Visit::CheckExtension() const
{
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(X(), &xcb_randr_id);
    if (extension == nullptr || extension->present == 0) Fail();
    const auto version = Had(xcb_randr_query_version_reply(X(), xcb_randr_query_version(X(), 1, 3), nullptr));
    if (version->major_version == 1 && version->minor_version < 2) Fail();
}

Owned<xcb_randr_get_output_info_reply_t> Visit::InfoOf(xcb_randr_output_t output) const
{
    return Had(xcb_randr_get_output_info_reply(X(), xcb_randr_get_output_info(X(), output, Resources->config_timestamp),
                                               nullptr));
}

// The main screen is the one that the desktop calls so, or else the first that shows something.
void Visit::FindFeeds()
{
    const auto primary =
        Had(xcb_randr_get_output_primary_reply(X(), xcb_randr_get_output_primary(X(), Screen->root), nullptr));
    const xcb_randr_output_t* outputs = xcb_randr_get_screen_resources_outputs(Resources.get());
    for (int index = 0; index < xcb_randr_get_screen_resources_outputs_length(Resources.get()); ++index) {
        const auto output = InfoOf(outputs[index]);
        if (output->crtc == XCB_NONE) continue;
        const auto crtc = Had(xcb_randr_get_crtc_info_reply(
            X(), xcb_randr_get_crtc_info(X(), output->crtc, Resources->config_timestamp), nullptr));
        const QRect area(crtc->x, crtc->y, crtc->width, crtc->height);
        Others.push_back({output->crtc, outputs[index], area, crtc->rotation});
    }
    if (Others.empty()) Fail();
    auto main =
        std::find_if(Others.begin(), Others.end(), [&](const Feed& feed) { return feed.Output == primary->output; });
    if (main == Others.end()) main = Others.begin();
    Main = *main;
    Others.erase(main);
}

/// The quickest mode of this size that the monitor offers.
xcb_randr_mode_t Visit::ModeOf(QSize size) const
{
    const QSize upright = IsTurned(Main.Rotation) ? size.transposed() : size;
    const auto output = InfoOf(Main.Output);
    const xcb_randr_mode_t* offered = xcb_randr_get_output_info_modes(output.get());
    const xcb_randr_mode_t* end = offered + xcb_randr_get_output_info_modes_length(output.get());
    const xcb_randr_mode_info_t* modes = xcb_randr_get_screen_resources_modes(Resources.get());
    const xcb_randr_mode_info_t* best = nullptr;
    for (int index = 0; index < xcb_randr_get_screen_resources_modes_length(Resources.get()); ++index) {
        const xcb_randr_mode_info_t& mode = modes[index];
        if (QSize(mode.width, mode.height) != upright || std::find(offered, end, mode.id) == end) continue;
        if (best == nullptr || Frequency(mode) > Frequency(*best)) best = &mode;
    }
    return best == nullptr ? xcb_randr_mode_t{XCB_NONE} : best->id;
}

QSize Visit::ScreenSize() const
{
    const auto root = Had(xcb_get_geometry_reply(X(), xcb_get_geometry(X(), Screen->root), nullptr));
    return {root->width, root->height};
}

bool Visit::SetMode(xcb_randr_mode_t mode) const
{
    const Owned<xcb_randr_set_crtc_config_reply_t> reply(xcb_randr_set_crtc_config_reply(
        X(),
        xcb_randr_set_crtc_config(X(), Main.Crtc, XCB_CURRENT_TIME, Resources->config_timestamp,
                                  static_cast<std::int16_t>(Main.Area.x()), static_cast<std::int16_t>(Main.Area.y()),
                                  mode, Main.Rotation, 1, &Main.Output),
        nullptr));
    return reply && reply->status == XCB_RANDR_SET_CONFIG_SUCCESS;
}

// The millimetres grow with the pixels, so that texts keep their size.
bool Visit::SetScreenSize(QSize size) const
{
    const auto scaled = [](int millimetres, int pixels, int before) {
        return static_cast<std::uint32_t>(std::max(1, millimetres * pixels / std::max(before, 1)));
    };
    const std::uint32_t width = scaled(Screen->width_in_millimeters, size.width(), Screen->width_in_pixels);
    const std::uint32_t height = scaled(Screen->height_in_millimeters, size.height(), Screen->height_in_pixels);
    const Owned<xcb_generic_error_t> error(xcb_request_check(
        X(), xcb_randr_set_screen_size_checked(X(), Screen->root, static_cast<std::uint16_t>(size.width()),
                                               static_cast<std::uint16_t>(size.height()), width, height)));
    return !error;
}

// The screen holds all monitors at every moment: it grows before the mode changes and shrinks after it.
void Visit::Change(QSize size) const
{
    const xcb_randr_mode_t mode = ModeOf(size);
    if (mode == XCB_NONE || size == Current()) return;
    QRect all(Main.Area.topLeft(), size);
    for (const Feed& other : Others) all |= other.Area;
    const QSize before = ScreenSize();
    const QSize needed(all.right() + 1, all.bottom() + 1);
    const QSize meanwhile = before.expandedTo(needed);
    if (meanwhile != before && !SetScreenSize(meanwhile)) return;
    const bool changed = SetMode(mode);
    if (const QSize after = changed ? needed : before; after != meanwhile) (void)SetScreenSize(after);
}

}  // namespace

QSize X11DisplayModes::Current() const
{
    try {
        return Visit(Display).Current();
    } catch (const RuntimeError&) {
        return {};
    }
}

void X11DisplayModes::Change(QSize size)
{
    Visit(Display).Change(size);
}
