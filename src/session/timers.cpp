#include "session/timers.h"

namespace {

QTimer& Named(QObject& window, const QString& name, int milliseconds)
{
    auto* timer = new QTimer(&window);
    timer->setObjectName(name);
    timer->setInterval(milliseconds);
    return *timer;
}

}  // namespace

Timers::Timers(QObject& window)
    : Timer1(Named(window, "Timer1", 1500)), Timer2(Named(window, "Timer2", 2100)),
      Timer3(Named(window, "Timer3", 1000)), Timer4(Named(window, "Timer4", 4000)),
      Timer5(Named(window, "Timer5", 100)), Timer6(Named(window, "Timer6", 3600)),
      MultiTimer(Named(window, "MultiTimer", 1030)), ClipBoardTimer(Named(window, "ClipBoardTimer", 330))
{
    connect(&Timer1, &QTimer::timeout, this, &Timers::Timer1_Timer);
}
