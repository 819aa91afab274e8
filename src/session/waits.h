#pragma once

#include "base/run_time_error.h"

#include <QObject>
#include <utility>

class Inet;
class QTimer;

/// Thrown out of a wait when the program ends, so that every procedure stacked above it is left. Only RunHandler
/// catches it.
struct ProgramEnding {};

/// The one way to wait: a nested event loop that sleeps. Waits of other handlers may be stacked on top; the last one
/// begun ends first. User-interface thread.
class Waits final : public QObject {
    Q_OBJECT

public:
    /// Returns when the component is idle and the listeners of its final state have returned; at once when it is
    /// idle already, after one pass of the event loop. Throws ProgramEnding when the program ends meanwhile.
    void UntilIdle(const Inet& inet);

    /// Returns when the interval of the timer has become 0, which is looked at after each of its ticks. Throws
    /// ProgramEnding when the program ends meanwhile.
    void UntilRunOut(const QTimer& timer);

    /// Handles what is pending in the event loop, once. Throws ProgramEnding when the program ends.
    void Yield();

    /// Ends every wait: those stacked now and those to come.
    void End();

    bool Ending() const { return Ended; }

    /// For after a question: it is answered by itself when the program ends. Throws ProgramEnding then.
    void ThrowWhenEnding() const;

signals:
    void EndRequested();

private:
    bool Ended = false;
};

/// Runs the body of a handler. A run-time error that nobody below caught is recorded; the end of the program passes
/// in silence. Nothing crosses a handler.
template <typename Body>
void RunHandler(ErrorRecord& errors, Body&& body)
{
    try {
        std::forward<Body>(body)();
    } catch (const RuntimeError& error) {
        errors.Caught(error);
    } catch (const ProgramEnding&) {
        // The event loop below ends too.
    }
}
