#pragma once

#include "base/run_time_error.h"
#include "platform/display_modes.h"

#include <QList>

/// A screen that takes the modes it is told to have.
class FakeDisplay final : public DisplayModes {
public:
    QString Obstacle() const override { return Why; }

    QSize Current() const override { return Size; }

    void Change(QSize size) override
    {
        Asked += size;
        if (!Complaint.isEmpty()) throw RuntimeError(Complaint);
        if (Modes.contains(size)) Size = size;
    }

    QSize Size{1280, 1024};
    QList<QSize> Modes{{640, 480}, {800, 600}, {1024, 768}};
    QString Why;         ///< when set, programs cannot change the resolution, for this reason
    QString Complaint;   ///< when set, the display cannot be talked to, for this reason
    QList<QSize> Asked;  ///< the sizes it was asked to change to
};
