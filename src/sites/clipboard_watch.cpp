#include "sites/clipboard_watch.h"

namespace {

constexpr int IntervalInMilliseconds = 330;

bool IsAddress(const QString& text)
{
    const bool known = text.startsWith(u"http://") || text.startsWith(u"ftp://");
    return known && text.size() <= ClipboardSource::MaxLength;
}

QString WithoutTrailingBreaks(QString text)
{
    while (text.endsWith(u'\r') || text.endsWith(u'\n') || text.endsWith(u' ')) text.chop(1);
    return text;
}

}  // namespace

ClipboardWatch::ClipboardWatch(Controls controls, AddressState& address, ClipboardSource& source,
                               std::function<void()> beep)
    : Form(controls), Address(address), Source(source), Beep(std::move(beep))
{
    ClipBoardTimer.setObjectName("ClipBoardTimer");
    ClipBoardTimer.setParent(this);
    ClipBoardTimer.setInterval(IntervalInMilliseconds);
    connect(&ClipBoardTimer, &QTimer::timeout, this, &ClipboardWatch::ClipBoardTimer_Timer);
}

void ClipboardWatch::ClipBoardTimer_Timer()
{
    const std::optional<QString> text = Source.NewText();
    if (!text || *text == LastText) return;
    LastText = *text;
    if (!IsAddress(*text)) return;
    Address.ClippedAddress = WithoutTrailingBreaks(*text);
    Beep();
    Beep();
    Form.cmdPaste.setEnabled(true);
    Form.cmdPaste2.setEnabled(true);
}

void ClipboardWatch::mnuWatchClip_Click()
{
    const bool watch = !Form.mnuWatchClip.isChecked();
    if (watch)
        ClipBoardTimer.start();
    else
        ClipBoardTimer.stop();
    Form.mnuWatchClip.setChecked(watch);
}

void ClipboardWatch::cmdPaste_Click()
{
    Paste(Form.txtURL, Form.cmdPaste);
}

void ClipboardWatch::cmdPaste2_Click()
{
    Paste(Form.txtCom, Form.cmdPaste2);
}

void ClipboardWatch::Paste(QComboBox& box, QAbstractButton& button)
{
    Address.AddressRestored = true;
    box.setEditText(Address.ClippedAddress);
    button.setEnabled(false);
}
