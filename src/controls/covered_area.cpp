#include "controls/covered_area.h"

#include <QEvent>
#include <QWidget>

CoveredArea::CoveredArea(QWidget& view, QWidget& content, QSize full) : View(view), Content(content), Full(full)
{
    View.installEventFilter(this);
    Content.installEventFilter(this);
    Arrange();
}

bool CoveredArea::eventFilter(QObject* watched, QEvent* event)
{
    const bool viewChanged = watched == &View && (event->type() == QEvent::Resize || event->type() == QEvent::Move);
    const bool contentChanged = watched == &Content && event->type() == QEvent::LayoutRequest;
    if (viewChanged || contentChanged || event->type() == QEvent::Show) Arrange();
    return QObject::eventFilter(watched, event);
}

void CoveredArea::Arrange()
{
    QWidget& window = *View.window();
    const QPoint corner = View.mapTo(&window, QPoint());
    const QSize designed = Full - QSize(corner.x(), corner.y());
    const QSize size = designed.expandedTo(Content.minimumSizeHint());
    const bool followed = window.width() == window.maximumWidth() || window.width() == Full.width();
    Content.setGeometry(QRect(QPoint(), size));
    window.setMaximumSize(size.width() + corner.x(), size.height() + corner.y());
    if (followed) window.resize(window.maximumWidth(), window.height());
    KeepCoveredFromFocus();
}

void CoveredArea::KeepCoveredFromFocus()
{
    for (QWidget* widget : Content.findChildren<QWidget*>()) {
        const bool known = Covered.contains(widget);
        if (known == IsCovered(*widget)) continue;
        if (known) {
            widget->setFocusPolicy(Covered.take(widget));
        } else if (widget->focusPolicy() != Qt::NoFocus) {
            Covered.insert(widget, widget->focusPolicy());
            widget->setFocusPolicy(Qt::NoFocus);
            widget->clearFocus();
        }
    }
}

// A control counts as covered once less than half of it can be seen.
bool CoveredArea::IsCovered(const QWidget& widget) const
{
    return widget.mapTo(&View, widget.rect().center()).y() >= View.height();
}
