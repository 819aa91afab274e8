#include "session/commands.h"

namespace {

constexpr int PieceSize = 1024;  // characters

bool AsksForListing(const QString& operation)
{
    const QString word = operation.section(u' ', 0, 0);
    return word == u"LS" || word == u"DIR";
}

}  // namespace

Commands::Commands(Inet& inet, TransferState& state, const Options& options, Waits& waits)
    : Component(inet), State(state), Chosen(options), Pause(waits)
{
}

void Commands::WaitUntilIdle()
{
    Pause.UntilIdle(Component);
}

void Commands::Execute(int operationKind, const QString& operation, const QString& inputData)
{
    ExecuteOn(Component.URL(), operationKind, operation, inputData);
}

void Commands::ExecuteOn(const QString& url, int operationKind, const QString& operation, const QString& inputData)
{
    State.OperationKind = operationKind;
    State.ListingExpected = AsksForListing(operation);
    if (State.ListingExpected) ++State.ListingNumber;
    Component.Execute(url, operation, inputData);
}

bool Commands::CarryOut(int operationKind, const QString& operation)
{
    // The component does one thing at a time: the first final state is this operation's, whatever handlers do
    // meanwhile.
    int final = -1;
    QObject listener;
    QObject::connect(&Component, &Inet::StateChanged, &listener, [&](int state) {
        const bool ends = state == Inet::ResponseCompleted || state == Inet::Error || state == Inet::None;
        if (ends && final < 0) final = state;
    });
    Execute(operationKind, operation);
    WaitUntilIdle();
    return final == Inet::ResponseCompleted;
}

QString Commands::ListingOperation() const
{
    return Chosen.UnixListing ? QStringLiteral("LS") : QStringLiteral("DIR");
}

void Commands::RequestListing()
{
    Execute(ListingKind, ListingOperation());
}

// The pieces are taken without a pause before or between them: a command that another handler issued in one would
// replace the reply that is being read.
QString Commands::GatherReply()
{
    if (Component.StillExecuting()) WaitUntilIdle();
    QString text;
    QString chunk = Component.GetChunk(PieceSize);
    while (!chunk.isEmpty()) {
        text += chunk;
        chunk = Component.GetChunk(PieceSize, Inet::Text);
    }
    return text;
}
