#include "app/escape_key.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>
#include <QWidget>

EscapeKey::EscapeKey(QWidget& window, bool& escapePressed) : Window(window), EscapePressed(escapePressed)
{
    qApp->installEventFilter(this);
}

bool EscapeKey::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !receiver->isWidgetType()) return false;
    if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) return false;
    const auto* control = static_cast<QWidget*>(receiver);
    if (control->window() != &Window || QApplication::activePopupWidget() != nullptr) return false;
    EscapePressed = true;
    // The menu bar needs the key to give the keyboard back.
    return qobject_cast<const QMenuBar*>(control) == nullptr;
}
