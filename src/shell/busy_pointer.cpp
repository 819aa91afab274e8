#include "shell/busy_pointer.h"

#include <QCursor>
#include <QGuiApplication>

void BusyPointer::SetBusyPointer()
{
    Set(Qt::BusyCursor);
}

void BusyPointer::SetWaitPointer()
{
    Set(Qt::WaitCursor);
}

void BusyPointer::SetNormalPointer()
{
    if (!Shape) return;
    QGuiApplication::restoreOverrideCursor();
    Shape.reset();
}

void BusyPointer::Set(Qt::CursorShape shape)
{
    if (Shape == shape) return;
    if (Shape)
        QGuiApplication::changeOverrideCursor(QCursor(shape));
    else
        QGuiApplication::setOverrideCursor(QCursor(shape));
    Shape = shape;
}
