#include "session/message_ticker.h"

#include "base/byte_text.h"
#include "session/waits.h"
#include "shell/busy_pointer.h"

#include <QFile>
#include <QPalette>
#include <utility>

namespace {

constexpr int Passes = 3;
constexpr int MaxFileSize = 64 * 1024;
constexpr int MaxLines = 1000;
constexpr int MaxLength = 200;  // characters of a line

// The two colours of the text are given; each gets a background of its own, so that both are easy to read whatever the
// desktop's colours are.
const QColor Yellow(255, 255, 0);
const QColor DarkRed(128, 0, 0);
const QColor Night(26, 37, 56);
const QColor Cream(255, 246, 220);

void SetColours(QLabel& label, const QColor& text, const QColor& background)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Window, background);
    label.setPalette(palette);
}

}  // namespace

MessageTicker::MessageTicker(QLabel& label, Tools tools) : lblAds(label), Use(std::move(tools))
{
    connect(&Use.Timer5, &QTimer::timeout, this, &MessageTicker::Timer5_Timer);
    connect(&Use.Timer6, &QTimer::timeout, this, &MessageTicker::Timer6_Timer);
}

void MessageTicker::mnuMesgUpdate_Click()
{
    MessageIndex = 0;
    MessagePasses = 0;
    Use.Timer5.start();
}

void MessageTicker::Timer5_Timer()
{
    if (Fetching) return;
    Fetching = true;
    if (!Use.Errors.Attempt([this] { Fetch(); })) EndFetch();
}

void MessageTicker::Fetch()
{
    Use.Pointer.SetBusyPointer();
    QFile::remove(CopyPath());
    MessageCount = 0;
    MessageLines.clear();
    Use.Inet3.OpenURL(Use.Address, Inet::ByteArray, [this](const Inet::Download& download) {
        RunHandler(Use.Errors, [&] { Arrived(download); });
        EndFetch();
    });
}

void MessageTicker::Arrived(const Inet::Download& download)
{
    if (!download.Arrived) throw RuntimeError(download.Info);
    if (download.Bytes.size() > MaxFileSize) throw RuntimeError("The message file is too large.");
    KeepCopy(download.Bytes);
    ReadCopy();
    Use.Timer6.start();
}

// Whatever came of it: neither the timer nor the pointer stays as it is during a fetch.
void MessageTicker::EndFetch()
{
    Fetching = false;
    Use.Pointer.SetNormalPointer();
    Use.Timer5.stop();
}

void MessageTicker::KeepCopy(const QByteArray& bytes) const
{
    QFile copy(CopyPath());
    const bool written = copy.open(QIODevice::WriteOnly) && copy.write(bytes) == bytes.size() && copy.flush();
    if (!written) throw RuntimeError(copy.errorString());
}

void MessageTicker::ReadCopy()
{
    QFile copy(CopyPath());
    if (!copy.open(QIODevice::ReadOnly)) throw RuntimeError(copy.errorString());
    while (!copy.atEnd() && MessageCount < MaxLines) {
        QByteArray line = copy.readLine();
        while (line.endsWith('\n') || line.endsWith('\r')) line.chop(1);
        MessageLines += BytesToText(line).left(MaxLength);
        ++MessageCount;
    }
}

void MessageTicker::Timer6_Timer()
{
    if (++MessageIndex > MessageCount) {
        MessageIndex = 1;
        ++MessagePasses;
    }
    if (MessagePasses < Passes) {
        if (MessageIndex <= MessageCount) ShowLine();
        return;
    }
    lblAds.clear();
    Use.Timer6.stop();
}

// The mark of a line goes with its first showing, so that it is yellow once only.
void MessageTicker::ShowLine()
{
    QString& line = MessageLines[MessageIndex - 1];
    if (line.startsWith(u'!')) {
        line.remove(0, 1);
        SetColours(lblAds, Yellow, Night);
    } else {
        SetColours(lblAds, DarkRed, Cream);
    }
    lblAds.setText(ShownText(line));
}

QString MessageTicker::CopyPath() const
{
    return Use.ProgramFolder + "/msg.txt";
}
