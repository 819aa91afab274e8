#pragma once

#include <QObject>

class QWidget;

/// Sets a flag when Escape is pressed anywhere on a window, whichever control has the focus, and keeps the key from
/// typing or closing anything there. Open menus and drop-down lists still close with it, and other windows get it as
/// ever. User-interface thread.
class EscapeKey final : public QObject {
    Q_OBJECT

public:
    EscapeKey(QWidget& window, bool& escapePressed);

private:
    bool eventFilter(QObject* receiver, QEvent* event) override;

    QWidget& Window;
    bool& EscapePressed;
};
