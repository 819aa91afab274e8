#include "controls/link_label.h"

#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

LinkLabel::LinkLabel(QWidget* parent) : QLabel(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
    ChooseColour();
}

// Not every dark desktop has a colour for links that can be read on it.
void LinkLabel::ChooseColour()
{
    const QPalette common = QGuiApplication::palette();
    const bool dark = common.color(QPalette::Window).lightness() < 128;
    const QColor link = common.color(QPalette::Link);
    QPalette own = palette();
    own.setColor(QPalette::WindowText, dark && link.lightness() < 160 ? QColor(0x6C, 0xB6, 0xFF) : link);
    if (own.color(QPalette::WindowText) != palette().color(QPalette::WindowText)) setPalette(own);
}

void LinkLabel::changeEvent(QEvent* event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) ChooseColour();
}

// Or it would be the press of what lies below, and the release would not come here.
void LinkLabel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void LinkLabel::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) emit Clicked();
}

void LinkLabel::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        emit Clicked();
    else
        QLabel::keyPressEvent(event);
}

void LinkLabel::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}
