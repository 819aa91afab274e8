#pragma once

#include "controls/list_box.h"

#include <QTest>

/// Works a list with the mouse, as a user does. User-interface thread.
class ListMouse {
public:
    /// A point on a row, which is scrolled into view.
    static QPoint Middle(const ListBox& list, int row)
    {
        const QModelIndex index = list.model()->index(row, 0);
        const_cast<ListBox&>(list).scrollTo(index);
        const QRect shown = list.visualRect(index) & list.viewport()->rect();
        return {qMin(shown.left() + 8, shown.right()), shown.center().y()};
    }

    /// Presses and releases the left button on a row.
    static void LeftClick(const ListBox& list, int row, Qt::KeyboardModifiers keys = Qt::NoModifier)
    {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, Middle(list, row));
    }

    static void DoubleClick(const ListBox& list, int row)
    {
        LeftClick(list, row);
        const QPoint at = Middle(list, row);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::mouseRelease(list.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    /// Selects rows with clicks, all but the first with Ctrl held down.
    static void Select(const ListBox& list, const QList<int>& rows)
    {
        for (const int row : rows) LeftClick(list, row, row == rows.first() ? Qt::NoModifier : Qt::ControlModifier);
    }

    /// Drags from a row of a list onto another control.
    static void Drag(Qt::MouseButton button, const ListBox& from, int row, const QWidget& onto)
    {
        QWidget* source = from.viewport();
        const QPoint start = Middle(from, row);
        const QPoint end = source->mapFromGlobal(onto.mapToGlobal(onto.rect().center()));
        QTest::mousePress(source, button, Qt::NoModifier, start);
        QTest::mouseMove(source, (start + end) / 2);
        QTest::mouseMove(source, end);
        QTest::mouseRelease(source, button, Qt::NoModifier, end);
    }

    static void RightDrag(const ListBox& from, const QWidget& onto) { Drag(Qt::RightButton, from, 0, onto); }
};
