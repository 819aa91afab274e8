#pragma once

#include "platform/display_modes.h"

#include <QByteArray>

/// The resolution of an X11 display's main screen, by the RandR extension (version 1.2 or later). Each call is a visit
/// of its own to the display.
class X11DisplayModes final : public DisplayModes {
public:
    /// `display` names the display; empty for the one of the environment.
    explicit X11DisplayModes(QByteArray display = {}) : Display(std::move(display)) {}

    QString Obstacle() const override { return {}; }

    QSize Current() const override;
    void Change(QSize size) override;

private:
    QByteArray Display;
};
