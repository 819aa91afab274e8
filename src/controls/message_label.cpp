#include "controls/message_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr int Padding = 6;

}  // namespace

QRect MessageLabel::TextArea() const
{
    return contentsRect().adjusted(Padding, 0, -Padding, 0);
}

QString MessageLabel::Painted() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, TextArea().width());
}

bool MessageLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) return QLabel::event(event);
    const QString tip = Painted() == text() ? QString() : text().toHtmlEscaped();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
    return true;
}

void MessageLabel::paintEvent(QPaintEvent*)
{
    if (text().isEmpty()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().window());
    painter.drawRoundedRect(contentsRect(), 4, 4);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(TextArea(), Qt::AlignCenter | Qt::TextSingleLine, Painted());
}
