#pragma once

#include <QItemSelectionModel>
#include <QListView>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <vector>

class EntryDelegate;
class EntryModel;

/// A list of texts with one or several selected entries, which can also be dragged by hand.
///
/// Every press of a mouse button on the list begins a drag, after a left press has changed the selection as usual;
/// the release ends it and drops on the list box under the pointer, this one included. A right press never changes
/// the selection. Escape, or the loss of the focus or of the window, ends a drag without a drop. Entries are byte-true
/// (base/byte_text.h) and only shown harmlessly.
///
/// A list may also take files from other programs, and hand its entries to them as files: then a drag by hand that
/// leaves the window ends, and one of the desktop takes its place. User-interface thread.
class ListBox : public QListView {
    Q_OBJECT

public:
    explicit ListBox(QWidget* parent = nullptr);

    int Count() const;
    QString Entry(int index) const;
    const QStringList& Entries() const;

    /// Replaces all entries; the selection is lost. The cost is linear in their number.
    void SetEntries(const QStringList& entries);
    /// The same, for a list that is mostly what it was: entries that stay keep their selection, the highlighted one
    /// stays it, and the view stays where it is. Of equal entries the first stands for the first, and so on.
    void UpdateEntries(const QStringList& entries);
    void Append(const QString& entry);
    void Append(const QStringList& entries);
    void Clear();

    /// Whether columns of the entries stand below each other: all letters have one width. They are drawn narrow, since
    /// what matters stands at the end of long lines.
    void SetFixedPitch(bool on);

    bool IsSelected(int index) const;
    QStringList SelectedEntries() const;  ///< in list order

    /// The highlighted entry, which the keyboard moves: 0 for the first, -1 for none.
    int ListIndex() const;
    void SetListIndex(int index);

    /// From now on files of other programs can be dropped here.
    void TakeFiles();

    /// What a drag that leaves the window offers to other programs. Without any file the drag by hand goes on.
    struct Offer {
        std::function<QList<QUrl>()> Files;                                   ///< the addresses of the selected entries
        std::function<void(QWidget& source, const QList<QUrl>& files)> Drag;  ///< as DragFiles does
    };

    void OfferFiles(Offer offer);

    bool IsDragging() const { return DragButton != Qt::NoButton; }

signals:
    void Clicked();     ///< a left press has selected an entry; comes before the drop that ends the press
    void DragBegun();   ///< a press of any mouse button, when it has changed the selection
    void DblClicked();  ///< a double click with the left button on an entry, or the Return key
    void DeletePressed();
    void DragDropped(QWidget* source, QPoint at);  ///< something was dropped here, `at` in this list's viewport
    /// Files of other programs were dropped here. Comes when the other program has been told, so that whatever follows
    /// does not hold it up.
    void FilesDropped(const QList<QUrl>& files);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void updateGeometries() override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;

private:
    void Widen(int width);
    int TopRow() const;
    void SelectRows(const std::vector<bool>& rows);
    void ScrollBack();
    void BeginDrag(const QMouseEvent& event);
    void EndDrag();
    bool DragOutside(const QPoint& global);
    bool Takes(const QDropEvent& event) const;
    ListBox* TargetAt(const QPoint& global) const;

    EntryModel* Model;
    EntryDelegate* Delegate;
    Qt::MouseButton DragButton = Qt::NoButton;  ///< whose release ends the drag
    QPoint DragStart;                           ///< in the viewport
    bool TakesFiles = false;
    Offer Offered;
    int PlaceToFind = -1;  ///< the view goes there once it has been laid out so far
};
