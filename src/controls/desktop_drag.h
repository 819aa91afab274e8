#pragma once

#include <QList>
#include <QUrl>

class QWidget;

/// Drags files out of the window: other programs get their addresses and may copy what lies there. The mouse button is
/// down and belongs to `source`; returns when it has been let go or the drag has been called off, events are handled
/// meanwhile. User-interface thread.
void DragFiles(QWidget& source, const QList<QUrl>& files);
