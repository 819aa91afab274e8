#pragma once

#include <QAbstractListModel>
#include <QStringList>

/// The entries of a list box: texts in a given order, shown harmlessly and kept as they are.
/// User-interface thread.
class EntryModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    const QStringList& Entries() const { return Texts; }

    void SetEntries(const QStringList& entries);
    void Append(const QStringList& entries);

private:
    QStringList Texts;
};
