#include "support/visitor.h"

#include <QDeadlineTimer>
#include <QTimer>

namespace {

constexpr int CommandLimit = 600'000;  // milliseconds: far beyond what any command may take
constexpr int LookInterval = 2;        // milliseconds between two looks at what reports nothing

}  // namespace

QString Visit::Account() const
{
    QString states;
    for (const int state : States) states += QString::number(state) + u' ';
    return states + QStringLiteral("| %1 %2").arg(Code).arg(Info);
}

Visitor::Visitor(Inet& inet) : Component(inet)
{
    connect(&inet, &Inet::StateChanged, this, [this](int state) {
        States.append(state);
        Loop.wakeUp();
        if (HasEnded()) Loop.quit();
    });
}

Visit Visitor::Do(const QString& operation)
{
    Begin(operation);
    return Finish();
}

void Visitor::Begin(const QString& operation)
{
    States.clear();
    Component.Execute(Component.URL(), operation);
}

Visit Visitor::Finish()
{
    if (!HasEnded()) {
        QTimer::singleShot(CommandLimit, &Loop, &QEventLoop::quit);
        Loop.exec();
    }
    Visit visit{States, Component.ResponseCode(), Component.ResponseInfo(), {}};
    for (QString chunk = Component.GetChunk(1024); !chunk.isEmpty(); chunk = Component.GetChunk(1024)) {
        visit.Reply += chunk;
    }
    return visit;
}

bool Visitor::Until(const std::function<bool()>& holds)
{
    QTimer look;
    look.start(LookInterval);
    const QDeadlineTimer limit(CommandLimit);
    while (!holds()) {
        if (HasEnded() || limit.hasExpired()) return false;
        Loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool Visitor::HasEnded() const
{
    if (States.isEmpty()) return false;
    const int last = States.last();
    return last == Inet::ResponseCompleted || last == Inet::Error || last == Inet::None;
}
