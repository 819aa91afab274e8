#include "sites/x11_text.h"

#include <cstdlib>
#include <string_view>
#include <xcb/xcb.h>

namespace {

struct Freed {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Freed>;

}  // namespace

struct X11Text::Wire {
    explicit Wire(const char* display) : Connection(xcb_connect(display, nullptr))
    {
        if (!IsGood()) return;
        Clipboard = Atom("CLIPBOARD");
        Utf8 = Atom("UTF8_STRING");
        Place = Atom("TOLVANE_TEXT");
    }

    ~Wire() { xcb_disconnect(Connection); }

    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    bool IsGood() const { return xcb_connection_has_error(Connection) == 0; }

    xcb_atom_t Atom(std::string_view name) const
    {
        const auto asked = xcb_intern_atom(Connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(Connection, asked, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    // A late answer to an older request goes to a window that is no more.
    void RenewWindow()
    {
        DropWindow();
        Window = xcb_generate_id(Connection);
        const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(Connection)).data;
        xcb_create_window(Connection, XCB_COPY_FROM_PARENT, Window, screen.root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    void DropWindow()
    {
        if (Window != XCB_WINDOW_NONE) xcb_destroy_window(Connection, Window);
        Window = XCB_WINDOW_NONE;
    }

    /// What the owner has put into the window's property. The display itself answers, at once.
    QString Text() const
    {
        const auto asked = xcb_get_property(Connection, 0, Window, Place, XCB_ATOM_ANY, 0,
                                            static_cast<std::uint32_t>(MaxBytes + 3) / 4);
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(Connection, asked, nullptr));
        if (!reply || reply->type != Utf8 || reply->format != 8) return {};
        return QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                 xcb_get_property_value_length(reply.get()));
    }

    xcb_connection_t* Connection;
    xcb_window_t Window = XCB_WINDOW_NONE;
    xcb_atom_t Clipboard = XCB_ATOM_NONE;
    xcb_atom_t Utf8 = XCB_ATOM_NONE;
    xcb_atom_t Place = XCB_ATOM_NONE;
    int MaxBytes = 0;
};

X11Text::X11Text(const QByteArray& display)
    : X(std::make_unique<Wire>(display.isEmpty() ? nullptr : display.constData()))
{
}

X11Text::~X11Text() = default;

bool X11Text::IsConnected() const
{
    return X->IsGood();
}

void X11Text::Request(int maxBytes)
{
    if (!IsConnected()) return;
    X->MaxBytes = maxBytes;
    X->RenewWindow();
    xcb_convert_selection(X->Connection, X->Window, X->Clipboard, X->Utf8, X->Place, XCB_CURRENT_TIME);
    xcb_flush(X->Connection);
}

void X11Text::Forget()
{
    if (!IsConnected()) return;
    X->DropWindow();
    xcb_flush(X->Connection);
}

std::optional<QString> X11Text::Poll()
{
    if (!IsConnected()) return std::nullopt;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(X->Connection)}) {
        constexpr int SentByClient = 0x80;
        if ((event->response_type & ~SentByClient) != XCB_SELECTION_NOTIFY) continue;
        const auto& answer = *reinterpret_cast<const xcb_selection_notify_event_t*>(event.get());
        if (answer.requestor != X->Window || X->Window == XCB_WINDOW_NONE) continue;
        const QString text = answer.property == XCB_ATOM_NONE ? QString() : X->Text();
        X->DropWindow();
        xcb_flush(X->Connection);
        return text;
    }
    return std::nullopt;
}
