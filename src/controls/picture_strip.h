#pragma once

#include <QWidget>

class QAbstractButton;

/// Pictures stacked in one place, of which only the one in front can be reached with the keyboard. It lays each over
/// its whole area. Bring a picture to the front with raise(). User-interface thread.
class PictureStrip final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// The picture in front, or nothing while there is none.
    QAbstractButton* Front() const;

protected:
    void childEvent(QChildEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void MoveFocusToFront();
};
