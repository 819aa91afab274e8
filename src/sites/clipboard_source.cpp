#include "sites/clipboard_source.h"

#ifdef TOLVANE_X11
#include "sites/x11_text.h"
#else
class X11Text {};
#endif

#include <QGuiApplication>
#include <QMimeData>

DesktopClipboard::DesktopClipboard(QClipboard& clipboard) : Clipboard(clipboard)
{
#ifdef TOLVANE_X11
    if (QGuiApplication::platformName() == "xcb") Distant = std::make_unique<X11Text>();
#endif
    connect(&Clipboard, &QClipboard::dataChanged, this, [this] { MayHaveChanged = true; });
}

DesktopClipboard::~DesktopClipboard() = default;

std::optional<QString> DesktopClipboard::NewText()
{
    const bool changed = std::exchange(MayHaveChanged, false);
#ifdef TOLVANE_X11
    if (Distant && Distant->IsConnected()) {
        constexpr int MaxBytesOfCharacter = 4;
        const bool own = changed && Clipboard.ownsClipboard();
        if (own) Distant->Forget();
        if (changed && !own) Distant->Request((MaxLength + 1) * MaxBytesOfCharacter);
        if (!own) return Distant->Poll();
    }
#endif
    return changed ? std::optional(OfferedText()) : std::nullopt;
}

QString DesktopClipboard::OfferedText() const
{
    const QMimeData* data = Clipboard.mimeData();
    if (data == nullptr || !data->hasFormat("text/plain")) return QString();
    return data->text().left(MaxLength + 1);
}
