#pragma once

#include <QAbstractListModel>
#include <QStringList>

namespace tembra {

/// The texts on offer, one a row. Rows are made while they are shown, not before.
class TokenCompletionModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setEntries(const QStringList &entries);
    /// The whole text; what a row displays ends early where it is very long.
    QString entry(int row) const { return m_entries.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    QStringList m_entries;
};

} // namespace tembra
