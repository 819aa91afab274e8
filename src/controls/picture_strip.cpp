#include "controls/picture_strip.h"

#include <QAbstractButton>
#include <QChildEvent>

// The order of a widget's children is their order from the back to the front.
QAbstractButton* PictureStrip::Front() const
{
    QAbstractButton* front = nullptr;
    for (QObject* child : children())
        if (auto* picture = qobject_cast<QAbstractButton*>(child)) front = picture;
    return front;
}

void PictureStrip::childEvent(QChildEvent* event)
{
    QWidget::childEvent(event);
    if (event->polished() && event->child()->isWidgetType()) {
        auto* picture = static_cast<QWidget*>(event->child());
        picture->installEventFilter(this);
        picture->setGeometry(rect());
        picture->setAutoFillBackground(true);  // or the picture behind would look through
        MoveFocusToFront();
    }
}

bool PictureStrip::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ZOrderChange) MoveFocusToFront();
    return QWidget::eventFilter(watched, event);
}

void PictureStrip::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    for (QAbstractButton* picture : findChildren<QAbstractButton*>(Qt::FindDirectChildrenOnly))
        picture->setGeometry(rect());
}

void PictureStrip::MoveFocusToFront()
{
    QAbstractButton* front = Front();
    bool hadFocus = false;
    for (QAbstractButton* picture : findChildren<QAbstractButton*>(Qt::FindDirectChildrenOnly)) {
        if (picture == front) continue;
        hadFocus = hadFocus || picture->hasFocus();
        picture->setFocusPolicy(Qt::NoFocus);
    }
    if (front == nullptr) return;
    front->setFocusPolicy(Qt::StrongFocus);
    if (hadFocus) front->setFocus();
}
