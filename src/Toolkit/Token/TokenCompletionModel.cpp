#include "Toolkit/Token/TokenCompletionModel.h"

namespace tembra {

namespace {

constexpr qsizetype shownEntryCharacters = 300;

} // namespace

void TokenCompletionModel::setEntries(const QStringList &entries)
{
    beginResetModel();
    m_entries = entries;
    endResetModel();
}

int TokenCompletionModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant TokenCompletionModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    return m_entries.at(index.row()).left(shownEntryCharacters);
}

} // namespace tembra
