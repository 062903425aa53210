#pragma once

#include "Foundation/Result.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Rows/RecordArchive.h"

#include <map>
#include <memory>

namespace tembra {

class DeletionPlan;
class RowReader;
class ObjectModel;

/// Which keys come or go in a to-many relationship of a record.
using RelatedChanges = std::map<std::pair<ObjectID, int>, std::vector<qint64>>;

/// What carrying out a DeletionPlan does, read before it happens.
struct DeletionEffects
{
    std::shared_ptr<RecordArchive> archive;
    ChangeSet changes; ///< The deleted records.
    RelatedChanges losses; ///< To-manys of surviving records.

    static Result<DeletionEffects> of(const DeletionPlan &plan, const ObjectModel &schema,
                                      RowReader &reader);

private:
    void addRow(const DeletionPlan &plan, const ObjectModel &schema, ObjectID id,
                const RowReader::Row &row);
    void addVanished(const DeletionPlan &plan, int entity, size_t firstChange);
    Result<void> addLinks(const DeletionPlan &plan, const ObjectModel &schema, RowReader &reader,
                          int entity);
    Result<void> addCleared(const DeletionPlan &plan, const ObjectModel &schema, RowReader &reader,
                            int entity);
};

/// What bringing deleted records back does.
struct RestorationEffects
{
    void addRow(ObjectID id, const RowReader::Row &row, const ObjectModel &schema);

    ChangeSet changes; ///< The records that are back.
    RelatedChanges gains;
    std::vector<std::pair<ObjectID, ToOneChange>>
        toOnes; ///< Of records that were there all the time.
};

/// The to-ones of a row that point somewhere, as changes from or to nothing.
QVarLengthArray<ToOneChange, 1> toOnesOf(const RowReader::Row &row, const ObjectModel &schema,
                                         int entity, bool appearing);

} // namespace tembra
