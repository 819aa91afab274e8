#pragma once

#include "local/folder_lines.h"

#include <QIcon>
#include <QStyledItemDelegate>
#include <vector>

/// Draws the rows of the folder list: each with a folder in front, as far to the right as it lies below the root.
/// User-interface thread.
class FolderDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    /// Row n of the list shows `lines[n]`.
    FolderDelegate(const std::vector<FolderLine>& lines, QIcon open, QIcon closed);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const FolderLine* LineAt(const QModelIndex& index) const;
    int Indentation(const QStyleOptionViewItem& option, const QModelIndex& index) const;

    const std::vector<FolderLine>& Lines;
    QIcon Open;
    QIcon Closed;
};
