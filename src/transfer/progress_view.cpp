#include "transfer/progress_view.h"

#include <QLocale>
#include <algorithm>

namespace {

constexpr int Whole = 1000;

QString TimeText(qint64 seconds)
{
    QString tail = QStringLiteral("%1:%2").arg(seconds / 60 % 60).arg(seconds % 60, 2, 10, QChar(u'0'));
    if (seconds < 3600) return tail;
    return QString::number(seconds / 3600) + u':' + tail.rightJustified(5, u'0');
}

}  // namespace

QString ProgressText(const Inet::Progress& progress)
{
    QString rate = QLocale().formattedDataSize(progress.Rate, 1, QLocale::DataSizeTraditionalFormat) + "/s";
    const qint64 left = progress.Expected - progress.Done;
    if (left < 0 || progress.Rate <= 0) return rate;
    return rate + "  " + TimeText(left / progress.Rate + (left % progress.Rate > 0 ? 1 : 0));
}

ProgressView::ProgressView(Inet& inet, QProgressBar& bar) : Bar(bar)
{
    Bar.setRange(0, Whole);
    connect(&inet, &Inet::Progressed, this, &ProgressView::Show);
    connect(&inet, &Inet::Transferred, this, &ProgressView::ShowEnd);
    connect(&inet, &Inet::StateChanged, this, &ProgressView::React);
}

void ProgressView::Show(const Inet::Progress& progress)
{
    const double part = progress.Expected > 0 ? double(progress.Done) / double(progress.Expected) : 0.0;
    Tell(int(std::min(part, 1.0) * Whole), ProgressText(progress));
}

void ProgressView::ShowEnd(const Inet::Confirmation& confirmation)
{
    if (confirmation.BySize)
        Tell(Whole, QStringLiteral("Size confirmed"));
    else
        Bar.hide();
}

// A transfer that ends otherwise has nothing to show for it.
void ProgressView::React(int state)
{
    if (state == Inet::Error || state == Inet::None || state == Inet::Disconnected) Bar.hide();
}

void ProgressView::Tell(int permille, const QString& text)
{
    Bar.setValue(permille);
    Bar.setFormat(text);
    Bar.setAccessibleDescription(text);
    Bar.show();
}
