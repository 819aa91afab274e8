#pragma once

#include <QApplication>
#include <QObject>
#include <functional>

/// What the program sees to on Windows alone.

/// Before the application object is made: no library comes from the current folder, which is where received files go,
/// and a dark desktop gives the windows a dark frame and dark colours.
void PrepareForWindows();

/// Whether the user has chosen dark windows, and no high contrast.
bool IsDesktopDark();

/// Follows the desktop between light and dark while it lives: the system's own style draws light controls only, so a
/// dark desktop gets the toolkit's style. User-interface thread.
class WindowsStyle final : public QObject {
    Q_OBJECT

public:
    /// `isDark` stands in for the desktop's choice.
    explicit WindowsStyle(QApplication& program, std::function<bool()> isDark = &IsDesktopDark);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Apply();

    std::function<bool()> IsDark;
    bool Dark = false;  ///< the toolkit's style is in use
};
