#pragma once

#include <QtGlobal>
#include <optional>
#include <qnamespace.h>

/// The mouse pointer of the whole program. The calls do not nest: the last one wins. User-interface thread.
class BusyPointer {
public:
    BusyPointer() = default;

    ~BusyPointer() { SetNormalPointer(); }

    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

    void SetBusyPointer();    ///< arrow with hourglass: work goes on in the background
    void SetWaitPointer();    ///< hourglass
    void SetNormalPointer();  ///< the default pointer

private:
    void Set(Qt::CursorShape shape);

    std::optional<Qt::CursorShape> Shape;
};
