#pragma once

#include <QPixmap>
#include <QWidget>

/// Shows a picture: in its own size where there is room, else reduced with the aspect kept. User-interface thread.
class PictureBox final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Shows a picture; `size` is its own size in device-independent pixels.
    void SetPicture(const QPixmap& picture, const QSize& size);

    const QPixmap& Picture() const { return Shown; }

    QSize sizeHint() const override { return OwnSize; }

private:
    void paintEvent(QPaintEvent* event) override;

    QPixmap Shown;
    QSize OwnSize;
};
