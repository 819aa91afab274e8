#pragma once

#include <QFontMetrics>
#include <QStringList>
#include <QStyledItemDelegate>

/// Draws the entries of a list box and gives all of them the width of the widest, so that a list whose entries are of
/// one size can be scrolled to the end of each. User-interface thread.
class EntryDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// The width, in device-independent pixels, of the widest of these texts. Only the longest are measured.
    static int WidestOf(const QStringList& entries, const QFontMetrics& metrics);

    int Width = 0;  ///< of the widest text
};
