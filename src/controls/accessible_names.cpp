#include "controls/accessible_names.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

namespace {

/// A label's text as it is spoken: without the mark of its mnemonic and the colon that points to its field.
QString Spoken(QString text)
{
    text.remove(QLatin1Char('&'));
    if (text.endsWith(QLatin1Char(':'))) text.chop(1);
    return text.trimmed();
}

bool IsField(const QWidget& widget)
{
    return qobject_cast<const QLineEdit*>(&widget) != nullptr || qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(&widget) != nullptr;
}

// A caption of a single letter or sign says nothing when it is read out.
bool NeedsName(const QAbstractButton& button)
{
    return Spoken(button.text()).size() < 2;
}

/// Before anything is picked or typed, the text of an editable box says what it is for.
QString Prompt(const QWidget& widget)
{
    const auto* box = qobject_cast<const QComboBox*>(&widget);
    if (box == nullptr || !box->isEditable() || box->findText(box->currentText()) >= 0) return {};
    return box->currentText();
}

void SetName(QWidget& widget, const QString& name)
{
    if (!name.isEmpty()) widget.setAccessibleName(name);
}

}  // namespace

void SetAccessibleNames(QWidget& window)
{
    QHash<const QWidget*, QString> labels;
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->buddy() != nullptr) labels.insert(label->buddy(), Spoken(label->text()));
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->objectName().startsWith(QLatin1String("qt_"))) continue;
        if (const auto* button = qobject_cast<QAbstractButton*>(widget)) {
            if (NeedsName(*button)) SetName(*widget, Spoken(button->toolTip()));
        } else if (IsField(*widget)) {
            const QString label = labels.value(widget);
            SetName(*widget, !label.isEmpty() ? label : Prompt(*widget));
        }
    }
}
