#include "Tags/RecentTagsArrayController.h"

#include "Tags/TagListViewModel.h"

namespace tembra {

namespace {

const TagListViewModel &rowAt(const ArrayController &rows, int row)
{
    return static_cast<const TagListViewModel &>(*rows.objectAt(row));
}

} // namespace

RecentTagsArrayController::RecentTagsArrayController(QObject *parent) : ArrayController(parent)
{
    setColumns({"title"});
}

QVariant RecentTagsArrayController::data(const QModelIndex &index, int role) const
{
    if (role != Qt::AccessibleDescriptionRole || !index.isValid())
        return ArrayController::data(index, role);
    const TagListViewModel &row = rowAt(*this, index.row());
    const QString shortcut = tr("Alt+Ctrl+%1", "Shortcut of a recent tag, as it is read aloud")
                                 .arg(QString::number(index.row() + 1));
    if (row.isEnabled())
        return shortcut;
    return tr("%1, already on this meeting", "Of a recent tag; follows its shortcut").arg(shortcut);
}

Qt::ItemFlags RecentTagsArrayController::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = ArrayController::flags(index);
    if (index.isValid() && !rowAt(*this, index.row()).isEnabled())
        flags &= ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return flags;
}

} // namespace tembra
