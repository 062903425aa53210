#include "Tags/TagsArrayController.h"

#include "Foundation/Text/Abbreviation.h"
#include "Model/Tag.h"

#include <algorithm>

namespace tembra {

TagsArrayController::TagsArrayController(QObject *parent) : ArrayController(parent)
{
    setColumns({"emoji", "name"});
    setColumnEditable(EmojiColumn, true);
    setColumnEditable(NameColumn, true);
    setSortDescriptors({{"name", true}, {"emoji", true}});
    setTieKey(
        [](const QObject &object) { return static_cast<const Tag &>(object).objectID().key; });
}

QString TagsArrayController::unnamedTitle()
{
    return tr("Unnamed tag", "Stands where the name of a tag without a name would");
}

std::shared_ptr<Tag> TagsArrayController::tagAt(int row) const
{
    return std::static_pointer_cast<Tag>(objectAt(row));
}

QList<std::shared_ptr<Tag>> TagsArrayController::selectedTags() const
{
    QList<int> rows = selectionIndexes();
    std::sort(rows.begin(), rows.end());
    QList<std::shared_ptr<Tag>> tags;
    for (const int row : std::as_const(rows))
        tags.append(tagAt(row));
    return tags;
}

QVariant TagsArrayController::data(const QModelIndex &index, int role) const
{
    if (role != Qt::AccessibleTextRole || !index.isValid())
        return ArrayController::data(index, role);
    const std::shared_ptr<Tag> tag = tagAt(index.row());
    if (index.column() == NameColumn)
        return tag->name().isEmpty() ? unnamedTitle() : singleLine(tag->name());
    return tag->emoji().isEmpty() ? tr("No emoji", "Accessible text of a tag's missing emoji")
                                  : singleLine(tag->emoji());
}

} // namespace tembra
