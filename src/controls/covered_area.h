#pragma once

#include <QHash>
#include <QObject>
#include <QSize>

class QWidget;

/// Keeps the content of a window at its full height while the window itself may be lower: what lies below the lower
/// edge is simply covered, and cannot be reached by the Tab key as long as it is.
///
/// The content is as wide and as high as designed, or larger where fonts and captions need it; the window cannot be
/// drawn beyond it. Its layout never depends on the size of the window. User-interface thread.
class CoveredArea final : public QObject {
    Q_OBJECT

public:
    /// `view` is the window's central widget, `content` its only child. `full` is the size that the window, menu bar
    /// included, needs to show everything, in device-independent pixels. Both widgets outlive this object.
    CoveredArea(QWidget& view, QWidget& content, QSize full);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Arrange();
    void KeepCoveredFromFocus();
    bool IsCovered(const QWidget& widget) const;

    QWidget& View;
    QWidget& Content;
    QSize Full;
    QHash<QWidget*, Qt::FocusPolicy> Covered;  ///< with the focus policy to come back to
};
