#include "local/folder_delegate.h"

#include <QApplication>
#include <QPainter>
#include <utility>

FolderDelegate::FolderDelegate(const std::vector<FolderLine>& lines, QIcon open, QIcon closed)
    : Lines(lines), Open(std::move(open)), Closed(std::move(closed))
{
}

const FolderLine* FolderDelegate::LineAt(const QModelIndex& index) const
{
    const auto row = static_cast<std::size_t>(index.row());
    return index.isValid() && row < Lines.size() ? &Lines[row] : nullptr;
}

int FolderDelegate::Indentation(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const FolderLine* line = LineAt(index);
    return line != nullptr ? option.decorationSize.width() / 2 * line->Depth : 0;
}

void FolderDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const FolderLine* line = LineAt(index);
    if (line == nullptr) return;
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->icon = line->Open ? Open : Closed;
}

// The whole row carries the selection; only what stands in it moves to the right.
void FolderDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QStyle* style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);
    QStyleOptionViewItem content = option;
    content.rect.setLeft(option.rect.left() + Indentation(option, index));
    QStyledItemDelegate::paint(painter, content, index);
}

QSize FolderDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    return QStyledItemDelegate::sizeHint(option, index) + QSize(Indentation(option, index), 0);
}
