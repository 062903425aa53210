#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

class Tag;

/// Lists the tags from A to Z. Column 0 is the emoji, column 1 the name.
class TagsArrayController final : public ArrayController
{
    Q_OBJECT

public:
    enum Column { EmojiColumn, NameColumn };

    explicit TagsArrayController(QObject *parent = nullptr);

    /// The placeholder of a missing name, in the row and in its editor.
    static QString unnamedTitle();

    std::shared_ptr<Tag> tagAt(int row) const;
    /// The selected tags in the order of the list.
    QList<std::shared_ptr<Tag>> selectedTags() const;

    /// Adds the accessible text of a cell.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
