#pragma once

#include <QSize>
#include <QString>
#include <memory>

/// The resolution of the desktop's main screen. User-interface thread.
class DisplayModes {
public:
    virtual ~DisplayModes() = default;

    /// Why programs cannot change the resolution here, as a sentence; empty where they can.
    virtual QString Obstacle() const = 0;

    /// In pixels; empty where it cannot be told.
    virtual QSize Current() const = 0;

    /// Changes the mode of the whole desktop. A mode that the display does not have or refuses changes nothing and is
    /// no error. Throws RuntimeError when the display cannot be talked to.
    virtual void Change(QSize size) = 0;
};

/// Those of the desktop that the program runs on.
std::unique_ptr<DisplayModes> DesktopDisplayModes();
