#include "sites/address_box.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QLineEdit>
#include <QSignalBlocker>

AddressBox::AddressBox(QComboBox& box) : Box(box)
{
    Box.setEditable(true);
    Box.setInsertPolicy(QComboBox::NoInsert);
    Box.setCompleter(nullptr);
    // A book of thousands of long addresses must neither be measured nor widen the window.
    Box.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // When editing ends, the toolkit would pick the entry that reads as the text.
    disconnect(Box.lineEdit(), &QLineEdit::editingFinished, &Box, nullptr);
    disconnect(Box.lineEdit(), SIGNAL(editingFinished()), &Box, nullptr);

    Box.view()->installEventFilter(this);
    connect(Box.lineEdit(), &QLineEdit::textEdited, this, &AddressBox::Deselect);
    connect(&Box, &QComboBox::editTextChanged, this, &AddressBox::TextChanged);
    connect(&Box, &QComboBox::activated, this, &AddressBox::Picked);
}

bool AddressBox::eventFilter(QObject*, QEvent* event)
{
    if (event->type() == QEvent::Show && !event->spontaneous()) emit DropsDown();
    return false;
}

// The text of a pick arrives here before the pick is reported; then the selection is already the new one.
void AddressBox::TextChanged(const QString& text)
{
    if (Box.currentIndex() >= 0 && Box.itemText(Box.currentIndex()) == text) return;
    Deselect();
    emit Changed();
}

// The toolkit takes the text away with the selection.
void AddressBox::Deselect()
{
    if (Box.currentIndex() < 0) return;
    QLineEdit& edit = *Box.lineEdit();
    const QSignalBlocker quietBox(Box);
    const QSignalBlocker quietEdit(edit);
    const QString text = edit.text();
    const int cursor = edit.cursorPosition();
    Box.setCurrentIndex(-1);
    edit.setText(text);
    edit.setCursorPosition(cursor);
}

void AddressBox::Add(const QStringList& addresses)
{
    const int selected = Box.currentIndex();
    const QSignalBlocker quietBox(Box);
    const QSignalBlocker quietEdit(*Box.lineEdit());
    const QString text = Box.currentText();
    const int cursor = Box.lineEdit()->cursorPosition();
    Box.addItems(addresses);
    if (Box.currentIndex() == selected) return;
    Box.setCurrentIndex(selected);
    Box.lineEdit()->setText(text);
    Box.lineEdit()->setCursorPosition(cursor);
}

void AddressBox::Clear()
{
    Box.clear();
    Box.clearEditText();
}

bool AddressBox::Select(int index)
{
    if (index < 0 || index >= Box.count()) return false;
    Box.setCurrentIndex(index);
    return true;
}
