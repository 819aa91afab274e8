#include "controls/entry_model.h"

#include "base/byte_text.h"

int EntryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(Texts.size());
}

QVariant EntryModel::data(const QModelIndex& index, int role) const
{
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return ShownText(Texts.at(index.row()));
    return {};
}

void EntryModel::SetEntries(const QStringList& entries)
{
    beginResetModel();
    Texts = entries;
    endResetModel();
}

void EntryModel::Append(const QStringList& entries)
{
    if (entries.isEmpty()) return;
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(entries.size()) - 1);
    Texts += entries;
    endInsertRows();
}
