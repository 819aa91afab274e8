#pragma once

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QWidget>
#include <algorithm>

/// What of a shown window's texts does not fit its place. User-interface thread.
class Clipping {
public:
    /// The controls whose text is cut off, that leave their window or that cover each other; empty when all is well.
    static QStringList Of(const QWidget& window)
    {
        QStringList faults;
        QList<const QWidget*> shown;
        for (const QWidget* widget : window.findChildren<const QWidget*>()) {
            if (!widget->isVisible() || Words(*widget).isEmpty()) continue;
            shown += widget;
            if (Needed(*widget) > Room(*widget))
                faults += QString("%1 needs %2 and has %3: %4")
                              .arg(widget->objectName())
                              .arg(Needed(*widget))
                              .arg(Room(*widget))
                              .arg(Words(*widget));
            if (widget->height() < NeededHeight(*widget)) faults += widget->objectName() + " is too low";
            if (!window.rect().contains(PlaceIn(window, *widget)))
                faults += widget->objectName() + " leaves the window";
        }
        return faults + Covered(window, shown) + MenuBars(window);
    }

private:
    static QString Words(const QWidget& widget)
    {
        QString words;
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) words = label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) words = button->text();
        if (const auto* box = qobject_cast<const QComboBox*>(&widget))
            words = box->currentText().isEmpty() ? box->placeholderText() : box->currentText();
        return words.remove('&');
    }

    /// A label that shows whatever comes, of any length, is no place for a given text.
    static bool Yields(const QWidget& widget) { return widget.sizePolicy().horizontalPolicy() == QSizePolicy::Ignored; }

    static int Needed(const QWidget& widget)
    {
        const auto* label = qobject_cast<const QLabel*>(&widget);
        if (Yields(widget)) return 0;
        if (label != nullptr && label->wordWrap()) return LongestWord(widget);
        int needed = widget.fontMetrics().horizontalAdvance(Words(widget));
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        if (button != nullptr && !button->icon().isNull()) needed += button->iconSize().width() + 4;
        return needed;
    }

    static int LongestWord(const QWidget& widget)
    {
        int longest = 0;
        static const QRegularExpression breaks("[ \n\\x{200B}]");
        for (const QString& word : Words(widget).split(breaks))
            longest = std::max(longest, widget.fontMetrics().horizontalAdvance(word));
        return longest;
    }

    static int NeededHeight(const QWidget& widget)
    {
        const auto* label = qobject_cast<const QLabel*>(&widget);
        return label != nullptr && label->wordWrap() ? label->heightForWidth(label->width())
                                                     : widget.minimumSizeHint().height();
    }

    static int Room(const QWidget& widget)
    {
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->contentsRect().width();
        if (const auto* box = qobject_cast<const QComboBox*>(&widget)) return RoomOf(*box);
        if (const auto* check = qobject_cast<const QCheckBox*>(&widget)) return RoomOf(*check);
        return widget.width() - (qobject_cast<const QPushButton*>(&widget) != nullptr ? 8 : 0);
    }

    static int RoomOf(const QComboBox& box)
    {
        QStyleOptionComboBox option;
        option.initFrom(&box);
        option.editable = box.isEditable();
        return box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box).width();
    }

    static int RoomOf(const QCheckBox& check)
    {
        QStyleOptionButton option;
        option.initFrom(&check);
        return check.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &check).width();
    }

    static QRect PlaceIn(const QWidget& window, const QWidget& widget)
    {
        return {widget.mapTo(&window, QPoint()), widget.size()};
    }

    static QStringList Covered(const QWidget& window, const QList<const QWidget*>& shown)
    {
        QStringList faults;
        for (const QWidget* one : shown)
            for (const QWidget* other : shown)
                if (one < other && !one->isAncestorOf(other) && !other->isAncestorOf(one) &&
                    PlaceIn(window, *one).intersects(PlaceIn(window, *other)))
                    faults += one->objectName() + " and " + other->objectName() + " cover each other";
        return faults;
    }

    /// A menu bar that has no room for its menus puts some of them behind a button.
    static QStringList MenuBars(const QWidget& window)
    {
        QStringList faults;
        for (const QMenuBar* bar : window.findChildren<const QMenuBar*>())
            for (QAction* menu : bar->actions())
                if (!bar->rect().contains(bar->actionGeometry(menu)) || bar->actionGeometry(menu).isEmpty())
                    faults += "menu " + menu->text() + " is not in its bar";
        return faults;
    }
};
