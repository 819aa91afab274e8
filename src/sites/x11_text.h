#pragma once

#include <QString>
#include <memory>
#include <optional>

/// The clipboard's text on an X11 desktop, asked for without waiting: the program that owns the clipboard answers
/// when it likes, or never. A connection of its own to the display. User-interface thread.
class X11Text {
public:
    /// `display` names the display; empty for the one of the environment.
    explicit X11Text(const QByteArray& display = {});
    ~X11Text();
    X11Text(const X11Text&) = delete;
    X11Text& operator=(const X11Text&) = delete;

    /// Whether the display can be talked to.
    bool IsConnected() const;

    /// Asks the clipboard's owner for its text; what an older request still brings is dropped. At most `maxBytes` of
    /// UTF-8 are fetched.
    void Request(int maxBytes);

    /// Drops what the last request still brings.
    void Forget();

    /// The answer to the last request, once; nothing while it has not come. Empty when there is no owner or no text,
    /// and for a text so long that its owner would send it in pieces.
    std::optional<QString> Poll();

private:
    struct Wire;
    std::unique_ptr<Wire> X;
};
