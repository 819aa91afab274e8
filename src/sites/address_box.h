#pragma once

#include <QComboBox>
#include <QObject>
#include <QStringList>

/// What the address box and those who fill it hand to each other. User-interface thread.
struct AddressState {
    bool AddressRestored = false;  ///< one-shot: the next change of txtURL does not refill the user ID and password
    QString ClippedAddress;        ///< the last address that the clipboard watch accepted
};

/// The address box txtURL: a text with a list below it. The toolkit's box picks entries by itself as one types, and
/// when the list gets its first entry; here an entry is selected only when it was picked, and a text that was typed
/// or set leaves the list without a selection. User-interface thread.
class AddressBox final : public QObject {
    Q_OBJECT

public:
    explicit AddressBox(QComboBox& box);

    /// The selected entry, from 0 on; -1 when none is selected.
    int Selected() const { return Box.currentIndex(); }

    /// Adds entries at the end of the list; the text and the selection stay.
    void Add(const QStringList& addresses);

    /// Empties the list, and the text with it.
    void Clear();

    /// Selects an entry, which then stands in the box; reports no pick. False when there is no such entry.
    bool Select(int index);

signals:
    void Picked();     ///< the user has chosen an entry, by mouse or keys
    void DropsDown();  ///< the list is about to be shown
    void Changed();    ///< a text has been typed or set

private:
    bool eventFilter(QObject* receiver, QEvent* event) override;
    void TextChanged(const QString& text);
    void Deselect();

    QComboBox& Box;
};
