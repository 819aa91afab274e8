#pragma once

#include <QEvent>
#include <QObject>
#include <functional>

/// A call that another thread hands to an object, which makes it on its own thread, in the order in which such calls
/// were handed over. It is not made any more once the object is gone.
///
/// The queue of the toolkit does the same for QMetaObject::invokeMethod, but under locks that the thread sanitizer does
/// not know: here the handing over is told to it as well.
class QueuedCall final : public QEvent {
public:
    /// Any thread. The object's event() must give Make its events.
    static void Post(QObject& receiver, std::function<void()> call);

    /// Makes the call that this event is; false when it is an event of another kind.
    static bool Make(QEvent& event);

    ~QueuedCall() override;

private:
    explicit QueuedCall(std::function<void()> call);

    std::function<void()> Call;
};
