#include "controls/list_box.h"

#include "controls/entry_delegate.h"
#include "controls/entry_model.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QMultiHash>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace {

constexpr double FixedPitchSize = 0.92;  // of the program's font, whose letters are narrower
constexpr int FixedPitchStretch = 85;    // percent

/// Where the entries of one list stand in another: -1 for those that are gone. What both begin and end with costs
/// little, so that a small change in a long list does.
std::vector<int> NewRows(const QStringList& before, const QStringList& after)
{
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype head = 0;
    while (head < shorter && before[head] == after[head]) ++head;
    qsizetype tail = 0;
    while (tail < shorter - head && before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) ++tail;

    QMultiHash<QString, int> rows;  // of equal entries the first is found first
    for (qsizetype row = after.size() - tail - 1; row >= head; --row) rows.insert(after[row], static_cast<int>(row));
    std::vector<int> found;
    found.reserve(static_cast<std::size_t>(before.size()));
    for (qsizetype row = 0; row < before.size(); ++row) {
        if (row < head)
            found.push_back(static_cast<int>(row));
        else if (row >= before.size() - tail)
            found.push_back(static_cast<int>(row + after.size() - before.size()));
        else
            found.push_back(rows.contains(before[row]) ? rows.take(before[row]) : -1);
    }
    return found;
}

}  // namespace

ListBox::ListBox(QWidget* parent) : QListView(parent), Model(new EntryModel(this)), Delegate(new EntryDelegate(this))
{
    setModel(Model);
    setItemDelegate(Delegate);
    setUniformItemSizes(true);
    setLayoutMode(QListView::Batched);
    setBatchSize(2000);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(false);
    setAutoScroll(false);
    setTextElideMode(Qt::ElideNone);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
}

int ListBox::Count() const
{
    return Model->rowCount();
}

QString ListBox::Entry(int index) const
{
    return Model->Entries().at(index);
}

const QStringList& ListBox::Entries() const
{
    return Model->Entries();
}

void ListBox::SetEntries(const QStringList& entries)
{
    PlaceToFind = -1;
    Delegate->Width = EntryDelegate::WidestOf(entries, fontMetrics());
    Model->SetEntries(entries);
}

void ListBox::UpdateEntries(const QStringList& entries)
{
    if (entries == Entries()) return;
    const std::vector<int> rows = NewRows(Entries(), entries);
    std::vector<bool> selected(static_cast<std::size_t>(entries.size()));
    for (const QModelIndex& index : selectionModel()->selectedRows())
        if (const int row = rows[static_cast<std::size_t>(index.row())]; row >= 0)
            selected[static_cast<std::size_t>(row)] = true;
    const int highlighted = ListIndex() < 0 ? -1 : rows[static_cast<std::size_t>(ListIndex())];
    // When the entry at the top is gone, the next one that is left takes its place.
    int top = -1;
    for (auto row = static_cast<std::size_t>(TopRow()); top < 0 && row < rows.size(); ++row) top = rows[row];
    const int across = horizontalScrollBar()->value();

    SetEntries(entries);
    SelectRows(selected);
    if (highlighted >= 0) selectionModel()->setCurrentIndex(Model->index(highlighted), QItemSelectionModel::NoUpdate);
    PlaceToFind = top >= 0 ? top : Count();
    doItemsLayout();
    horizontalScrollBar()->setValue(across);
}

int ListBox::TopRow() const
{
    const QModelIndex top = indexAt({0, 0});
    return top.isValid() ? top.row() : 0;
}

void ListBox::SelectRows(const std::vector<bool>& rows)
{
    QItemSelection selection;
    for (int row = 0; row < Count(); ++row) {
        if (!rows[static_cast<std::size_t>(row)]) continue;
        const int first = row;
        while (row + 1 < Count() && rows[static_cast<std::size_t>(row) + 1]) ++row;
        selection.append(QItemSelectionRange(Model->index(first), Model->index(row)));
    }
    selectionModel()->select(selection, QItemSelectionModel::Select);
}

// A long list is laid out piece by piece; the place may lie in a later one.
void ListBox::updateGeometries()
{
    QListView::updateGeometries();
    ScrollBack();
}

void ListBox::ScrollBack()
{
    if (PlaceToFind < 0) return;
    const int row = PlaceToFind;
    const bool reached = row <= verticalScrollBar()->maximum();
    verticalScrollBar()->setValue(row);
    const bool complete = Count() == 0 || visualRect(Model->index(Count() - 1)).isValid();
    if (reached || complete) PlaceToFind = -1;
}

void ListBox::Append(const QString& entry)
{
    Append(QStringList{entry});
}

void ListBox::Append(const QStringList& entries)
{
    Model->Append(entries);
    Widen(EntryDelegate::WidestOf(entries, fontMetrics()));
}

void ListBox::Clear()
{
    SetEntries({});
}

void ListBox::SetFixedPitch(bool on)
{
    QFont font;
    if (on) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPointSizeF(FixedPitchSize * QFontInfo(QApplication::font()).pointSizeF());
        font.setStretch(FixedPitchStretch);
    }
    setFont(font);
}

bool ListBox::IsSelected(int index) const
{
    return selectionModel()->isRowSelected(index, {});
}

QStringList ListBox::SelectedEntries() const
{
    QStringList selected;
    for (int index = 0; index < Count(); ++index)
        if (IsSelected(index)) selected += Entry(index);
    return selected;
}

int ListBox::ListIndex() const
{
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void ListBox::SetListIndex(int index)
{
    setCurrentIndex(index < 0 ? QModelIndex() : Model->index(index));
}

void ListBox::mousePressEvent(QMouseEvent* event)
{
    if (IsDragging()) {
        event->accept();
        return;
    }
    if (event->button() == Qt::LeftButton) {
        QListView::mousePressEvent(event);
        // The base class would go on to select whatever the pointer passes; the press is a drag here.
        setState(QAbstractItemView::NoState);
    } else {
        setFocus(Qt::MouseFocusReason);
        event->accept();
    }
    BeginDrag(*event);
    emit DragBegun();
    const QModelIndex pressed = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && pressed.isValid() && IsSelected(pressed.row())) emit Clicked();
}

void ListBox::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (!IsDragging()) return;
    const QPoint moved = event->position().toPoint() - DragStart;
    if (moved.manhattanLength() < QApplication::startDragDistance()) return;
    if (DragOutside(event->globalPosition().toPoint())) return;
    const ListBox* target = TargetAt(event->globalPosition().toPoint());
    viewport()->setCursor(target != nullptr && target != this ? Qt::DragCopyCursor : Qt::ForbiddenCursor);
}

void ListBox::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != DragButton) return;
    EndDrag();
    const QPoint global = event->globalPosition().toPoint();
    if (ListBox* target = TargetAt(global)) emit target->DragDropped(this, target->viewport()->mapFromGlobal(global));
}

void ListBox::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton) {
        mousePressEvent(event);
        return;
    }
    if (indexAt(event->position().toPoint()).isValid()) emit DblClicked();
}

void ListBox::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        if (ListIndex() >= 0) emit DblClicked();
        return;
    case Qt::Key_Delete:
        event->accept();
        emit DeletePressed();
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

void ListBox::focusOutEvent(QFocusEvent* event)
{
    EndDrag();
    QListView::focusOutEvent(event);
}

void ListBox::hideEvent(QHideEvent* event)
{
    EndDrag();
    QListView::hideEvent(event);
}

void ListBox::TakeFiles()
{
    TakesFiles = true;
    setAcceptDrops(true);
}

void ListBox::OfferFiles(Offer offer)
{
    Offered = std::move(offer);
}

bool ListBox::DragOutside(const QPoint& global)
{
    if (!Offered.Files || window()->frameGeometry().contains(global)) return false;
    const QList<QUrl> files = Offered.Files();
    if (files.isEmpty()) return false;
    EndDrag();
    Offered.Drag(*this, files);
    return true;
}

bool ListBox::Takes(const QDropEvent& event) const
{
    const QList<QUrl> files = event.mimeData()->urls();
    return TakesFiles && event.possibleActions().testFlag(Qt::CopyAction) &&
           std::any_of(files.begin(), files.end(), [](const QUrl& file) { return file.isLocalFile(); });
}

void ListBox::dragEnterEvent(QDragEnterEvent* event)
{
    dragMoveEvent(event);
}

void ListBox::dragMoveEvent(QDragMoveEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(Takes(*event));
}

void ListBox::dragLeaveEvent(QDragLeaveEvent* event)
{
    event->accept();
}

void ListBox::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(Takes(*event));
    if (!event->isAccepted()) return;
    QMetaObject::invokeMethod(
        this, [this, files = event->mimeData()->urls()] { emit FilesDropped(files); }, Qt::QueuedConnection);
}

void ListBox::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
}

void ListBox::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    if (event->type() == QEvent::FontChange) Widen(EntryDelegate::WidestOf(Entries(), fontMetrics()));
}

// Watches the whole program while a drag is going on: the key may go to any control, or to none.
bool ListBox::eventFilter(QObject* watched, QEvent* event)
{
    if (!IsDragging()) return QListView::eventFilter(watched, event);
    const bool escape = event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    if (escape || (event->type() == QEvent::WindowDeactivate && watched == window())) EndDrag();
    return false;
}

// A press on an entry that is selected already leaves only that one selected at once; the base class would wait for
// the release to see whether a drag follows.
QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index, const QEvent* event) const
{
    if (event != nullptr && event->type() == QEvent::MouseButtonPress && index.isValid() &&
        static_cast<const QMouseEvent*>(event)->modifiers() == Qt::NoModifier)
        return QItemSelectionModel::ClearAndSelect;
    return QListView::selectionCommand(index, event);
}

void ListBox::Widen(int width)
{
    if (width <= Delegate->Width) return;
    Delegate->Width = width;
    scheduleDelayedItemsLayout();
}

void ListBox::BeginDrag(const QMouseEvent& event)
{
    DragButton = event.button();
    DragStart = event.position().toPoint();
    qApp->installEventFilter(this);
}

void ListBox::EndDrag()
{
    DragButton = Qt::NoButton;
    qApp->removeEventFilter(this);
    viewport()->unsetCursor();
}

ListBox* ListBox::TargetAt(const QPoint& global) const
{
    QWidget* under = window()->childAt(window()->mapFromGlobal(global));
    while (under != nullptr) {
        if (auto* list = qobject_cast<ListBox*>(under)) return list;
        under = under->parentWidget();
    }
    return nullptr;
}
