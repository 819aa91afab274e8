#include "session/waits.h"

#include "inet/inet.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

void Waits::UntilIdle(const Inet& inet)
{
    Yield();
    while (inet.StillExecuting()) {
        QEventLoop loop;
        connect(&inet, &Inet::StateChanged, &loop, &QEventLoop::quit);
        connect(this, &Waits::EndRequested, &loop, &QEventLoop::quit);
        loop.exec();
        ThrowWhenEnding();
    }
}

void Waits::UntilRunOut(const QTimer& timer)
{
    Yield();
    while (timer.interval() > 0) {
        QEventLoop loop;
        connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        connect(this, &Waits::EndRequested, &loop, &QEventLoop::quit);
        loop.exec();
        ThrowWhenEnding();
    }
}

void Waits::Yield()
{
    ThrowWhenEnding();
    QCoreApplication::processEvents();
    ThrowWhenEnding();
}

void Waits::End()
{
    Ended = true;
    emit EndRequested();
}

void Waits::ThrowWhenEnding() const
{
    if (Ended) throw ProgramEnding{};
}
