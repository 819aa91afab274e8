#pragma once

#include <QApplication>
#include <QObject>

/// What the program sees to on Windows alone.

/// Before the application object is made: no library comes from the current folder, which is where received files go,
/// and a dark desktop gives the windows a dark frame and dark colours.
void PrepareForWindows();

/// Follows the desktop between light and dark while it lives: the system's own style draws light controls only, so a
/// dark desktop gets the toolkit's style. User-interface thread.
class WindowsStyle final : public QObject {
    Q_OBJECT

public:
    explicit WindowsStyle(QApplication& program);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Apply();

    bool Dark = false;  ///< the toolkit's style is in use
};
