#pragma once

#include "Toolkit/List/ArrayController.h"

namespace tembra {

class Tag;

/// The tags from A to Z: column 0 is the emoji, column 1 the name.
class TagsArrayController final : public ArrayController
{
    Q_OBJECT

public:
    enum Column { EmojiColumn, NameColumn };

    explicit TagsArrayController(QObject *parent = nullptr);

    /// What stands in for a name that is missing; also the prompt while one is typed.
    static QString unnamedTitle();

    std::shared_ptr<Tag> tagAt(int row) const;
    /// The selected tags in the order of the list.
    QList<std::shared_ptr<Tag>> selectedTags() const;

    /// Besides the usual roles the words for whoever hears the list.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
};

} // namespace tembra
