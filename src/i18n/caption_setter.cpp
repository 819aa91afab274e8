#include "i18n/caption_setter.h"

#include "base/conversions.h"
#include "base/run_time_error.h"
#include "controls/accessible_names.h"
#include "controls/drive_list_box.h"
#include "controls/picture.h"
#include "i18n/language.h"

#include <QAbstractSlider>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QSignalBlocker>
#include <algorithm>

namespace {

constexpr auto NumberOfToolTip = "ToolTipNumber";  // remembered, since the tip itself becomes a text
constexpr int KeepsToolTip = 777;
constexpr int NoToolTip = 999;
constexpr int FreeSpaceText = 63;  // the one tool tip that a label gets

enum class Kind { NoControl, Skipped, Label, ComboBox, TextBox, Other };

/// What the toolkit makes for itself inside a control has no name or one of its own kind.
bool IsNamed(const QWidget& widget)
{
    return !widget.objectName().isEmpty() && !widget.objectName().startsWith("qt_");
}

Kind KindOf(const QWidget& widget)
{
    if (!IsNamed(widget)) return Kind::NoControl;
    if (qobject_cast<const QListView*>(&widget) || qobject_cast<const QCheckBox*>(&widget) ||
        qobject_cast<const DriveListBox*>(&widget))
        return Kind::Skipped;
    if (qobject_cast<const QLabel*>(&widget)) return Kind::Label;
    if (qobject_cast<const QComboBox*>(&widget)) return Kind::ComboBox;
    if (qobject_cast<const QLineEdit*>(&widget)) return Kind::TextBox;
    if (qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QAbstractSlider*>(&widget))
        return Kind::Other;
    return Kind::NoControl;
}

QString Tag(const QWidget& widget)
{
    return widget.property("Tag").toString();
}

int NumericValue(const QString& text)
{
    return static_cast<int>(LeadingNumber(text));
}

/// A drop-down list without a text of its own shows one only while nothing is chosen. Nobody is told: the text is no
/// choice of the user's.
void ShowInComboBox(QComboBox& box, const QString& text)
{
    const QSignalBlocker silence(box);
    if (box.isEditable())
        box.setEditText(text);
    else
        box.setPlaceholderText(text);
}

void SetCaption(QWidget& widget, Kind kind, const Language& language)
{
    switch (kind) {
    case Kind::Label:
        static_cast<QLabel&>(widget).setText(language.LoadText(ToInteger32(Tag(widget))));
        break;
    case Kind::ComboBox:
        ShowInComboBox(static_cast<QComboBox&>(widget), language.LoadText(ToInteger32(Tag(widget))));
        break;
    case Kind::Other:
        // A picture and a slider have no caption.
        if (auto* button = qobject_cast<QAbstractButton*>(&widget); button && !qobject_cast<Picture*>(button))
            button->setText(language.LoadText(NumericValue(Tag(widget))));
        break;
    default:
        break;
    }
}

int ToolTipNumber(QWidget& widget)
{
    const QVariant known = widget.property(NumberOfToolTip);
    if (known.isValid()) return known.toInt();
    const int number = NumericValue(widget.toolTip());
    if (number > 0) widget.setProperty(NumberOfToolTip, number);
    return number;
}

void SetToolTip(QWidget& widget, Kind kind, const Language& language)
{
    if (NumericValue(Tag(widget)) == KeepsToolTip) return;
    const int number = ToolTipNumber(widget);
    const int id = language.LanguageBase + number;
    if (number != FreeSpaceText && (kind != Kind::Other || id == NoToolTip || id <= 0)) return;
    widget.setToolTip(language.LoadText(number));
}

void SetMenuCaption(QAction& entry, const Language& language)
{
    entry.setText(language.LoadText(ToInteger32(entry.text())));
}

bool IsMenuEntry(const QAction& action)
{
    const QList<QObject*> places = action.associatedObjects();
    return std::any_of(places.begin(), places.end(), [](const QObject* place) {
        return qobject_cast<const QMenu*>(place) != nullptr || qobject_cast<const QMenuBar*>(place) != nullptr;
    });
}

}  // namespace

void SetCaptions(QWidget& window, const Language& language, ErrorRecord& errors)
{
    for (QAction* action : window.findChildren<QAction*>())
        if (IsMenuEntry(*action)) errors.Attempt([&] { SetMenuCaption(*action, language); });
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->window() != &window) continue;  // the controls of its dialogs are their own affair
        const Kind kind = KindOf(*widget);
        if (kind == Kind::NoControl || kind == Kind::Skipped) continue;
        errors.Attempt([&] { SetCaption(*widget, kind, language); });
        errors.Attempt([&] { SetToolTip(*widget, kind, language); });
    }
    SetAccessibleNames(window);
}
