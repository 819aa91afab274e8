#include "controls/desktop_drag.h"

#include <QDrag>
#include <QMimeData>
#include <QWidget>
#include <memory>

void DragFiles(QWidget& source, const QList<QUrl>& files)
{
    auto data = std::make_unique<QMimeData>();
    data->setUrls(files);
    auto* drag = new QDrag(&source);  // goes by itself once it has ended
    drag->setMimeData(data.release());
    drag->exec(Qt::CopyAction);
}
