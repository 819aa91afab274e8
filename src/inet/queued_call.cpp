#include "inet/queued_call.h"

#include <QCoreApplication>
#include <atomic>
#include <utility>

namespace {

/// Counts what has been handed over. Who reads it after the queue has given him a call sees all that was done before
/// that call was handed over.
std::atomic<unsigned> HandedOver{0};

QEvent::Type Kind()
{
    static const int kind = QEvent::registerEventType();
    return static_cast<QEvent::Type>(kind);
}

void SeeWhatWasHandedOver()
{
    (void)HandedOver.load(std::memory_order_acquire);
}

}  // namespace

QueuedCall::QueuedCall(std::function<void()> call) : QEvent(Kind()), Call(std::move(call)) {}

// Events whose receiver is gone are deleted unseen.
QueuedCall::~QueuedCall()
{
    SeeWhatWasHandedOver();
}

void QueuedCall::Post(QObject& receiver, std::function<void()> call)
{
    auto* const event = new QueuedCall(std::move(call));
    HandedOver.fetch_add(1, std::memory_order_release);
    QCoreApplication::postEvent(&receiver, event);
}

bool QueuedCall::Make(QEvent& event)
{
    SeeWhatWasHandedOver();
    if (event.type() != Kind()) return false;
    static_cast<QueuedCall&>(event).Call();
    return true;
}
