#pragma once

#include <QLabel>

/// A label of one line that fills its background only while it shows something, and that ends a text for which it is
/// too narrow with dots; the whole text is its tool tip then. User-interface thread.
class MessageLabel final : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    /// The text as it is painted: the whole, or its beginning and dots.
    QString Painted() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect TextArea() const;
};
