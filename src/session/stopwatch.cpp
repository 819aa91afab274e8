#include "session/stopwatch.h"

namespace {

constexpr int Sixty = 60;
constexpr auto Separator = " : ";

}  // namespace

Stopwatch::Stopwatch(Controls controls, QTimer& timer3) : Form(controls), Timer3(timer3)
{
    connect(&Timer3, &QTimer::timeout, this, &Stopwatch::Timer3_Timer);
}

void Stopwatch::Command11_Click()
{
    if (Timer3.isActive() || !Form.LblTimer.isHidden()) {
        Timer3.stop();
        ShowControls(false);
        return;
    }
    Timer3.start();
    ShowControls(true);
    Timer3_Timer();
}

void Stopwatch::cmdPause_Click()
{
    if (Timer3.isActive())
        Timer3.stop();
    else
        Timer3.start();
}

void Stopwatch::Command13_Click() {}

void Stopwatch::Timer3_Timer()
{
    if (++StopwatchSeconds == Sixty) {
        StopwatchSeconds = 0;
        ++StopwatchMinutes;
    }
    if (StopwatchMinutes == Sixty) {
        ++StopwatchHours;
        StopwatchMinutes = 0;
    }
    QString text = QString::number(StopwatchSeconds);
    if (StopwatchHours > 0 || StopwatchMinutes > 0) text.prepend(QString::number(StopwatchMinutes) + Separator);
    if (StopwatchHours > 0) text.prepend(QString::number(StopwatchHours) + Separator);
    Form.LblTimer.setText(text);
}

void Stopwatch::ShowControls(bool shown)
{
    Form.LblTimer.setVisible(shown);
    Form.cmdPause.setVisible(shown);
    Form.Command13.setVisible(shown);
}
