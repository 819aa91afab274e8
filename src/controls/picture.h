#pragma once

#include <QAbstractButton>

/// A picture that can be clicked, by the mouse, or by Space and Enter while it has the focus.
/// User-interface thread.
class Picture final : public QAbstractButton {
    Q_OBJECT

public:
    explicit Picture(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
