#include "dialogs/picture_box.h"

#include "dialogs/picture_file.h"

#include <QPainter>

void PictureBox::SetPicture(const QPixmap& picture, const QSize& size)
{
    Shown = picture;
    if (OwnSize != size) {
        OwnSize = size;
        updateGeometry();
    }
    update();
}

void PictureBox::paintEvent(QPaintEvent*)
{
    if (Shown.isNull()) return;
    QRect place(QPoint(), FitInto(OwnSize, size()));
    place.moveCenter(rect().center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, Shown);
}
