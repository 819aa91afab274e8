#pragma once

#include <QLabel>

/// A label that acts as a link: it is clicked by the mouse, or by Space and Enter while it has the focus.
/// User-interface thread.
class LinkLabel final : public QLabel {
    Q_OBJECT

public:
    explicit LinkLabel(QWidget* parent = nullptr);

signals:
    void Clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void ChooseColour();
};
