#include "platform/beep.h"

#include <QApplication>

void Beep()
{
    QApplication::beep();
}
