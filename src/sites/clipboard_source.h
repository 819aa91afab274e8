#pragma once

#include <QClipboard>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>

class X11Text;

/// The text on the clipboard, for someone who looks often and must not be held up. User-interface thread.
class ClipboardSource {
public:
    virtual ~ClipboardSource() = default;

    /// The clipboard's text, when it may have changed since the last call; nothing while it has not, or while its
    /// owner has not told it yet. Empty when the clipboard is empty, offers no text, or one far longer than MaxLength.
    /// Of a text somewhat longer only the beginning, but more than MaxLength.
    virtual std::optional<QString> NewText() = 0;

    /// No address is longer: it is what a text box takes.
    static constexpr qsizetype MaxLength = 32767;
};

/// The desktop's clipboard. The program that owns it is asked only after it has announced a change, and for its text
/// only when it announces one: a picture, or nothing, costs nothing. On an X11 desktop its answer is not waited for.
class DesktopClipboard final : public QObject, public ClipboardSource {
    Q_OBJECT

public:
    explicit DesktopClipboard(QClipboard& clipboard);
    ~DesktopClipboard() override;
    DesktopClipboard(const DesktopClipboard&) = delete;
    DesktopClipboard& operator=(const DesktopClipboard&) = delete;
    std::optional<QString> NewText() override;

private:
    QString OfferedText() const;

    QClipboard& Clipboard;
    std::unique_ptr<X11Text> Distant;  ///< on an X11 desktop
    bool MayHaveChanged = true;
};
