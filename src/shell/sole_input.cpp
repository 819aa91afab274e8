#include "shell/sole_input.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>
#include <array>

namespace {

bool IsInput(QEvent::Type type)
{
    constexpr std::array Inputs{
        QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick, QEvent::Wheel,
        QEvent::KeyPress,         QEvent::KeyRelease,         QEvent::InputMethod,         QEvent::Shortcut,
        QEvent::ShortcutOverride, QEvent::ContextMenu,        QEvent::DragEnter,           QEvent::Drop,
        QEvent::TabletPress,      QEvent::TouchBegin,
    };
    return std::find(Inputs.begin(), Inputs.end(), type) != Inputs.end();
}

/// The widget that an event is for; a shortcut's receiver is an entry or button inside one. None for the toolkit's
/// own helpers, which hand events on to widgets.
const QWidget* WidgetOf(const QObject* receiver)
{
    while (receiver != nullptr && !receiver->isWidgetType()) receiver = receiver->parent();
    return static_cast<const QWidget*>(receiver);
}

/// Menus and lists are windows of their own, below the window that they were opened from.
bool BelongsTo(const QWidget* widget, const QWidget* window)
{
    while (widget != nullptr && widget != window) widget = widget->parentWidget();
    return widget != nullptr;
}

}  // namespace

void SoleInput::Enter(QWidget& window)
{
    if (Windows.empty()) qApp->installEventFilter(this);
    Windows.push_back(&window);
}

void SoleInput::Leave(QWidget& window)
{
    Windows.erase(std::find(Windows.begin(), Windows.end(), &window));
    if (Windows.empty()) qApp->removeEventFilter(this);
}

bool SoleInput::eventFilter(QObject* receiver, QEvent* event)
{
    if (!IsInput(event->type())) return false;
    QWidget* top = Windows.back();
    const QWidget* widget = WidgetOf(receiver);
    if (widget == nullptr || BelongsTo(widget, top)) return false;
    if (event->type() == QEvent::MouseButtonPress) {
        top->raise();
        top->activateWindow();
    }
    return true;
}
