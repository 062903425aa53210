#pragma once

#include "Store/Schema/ObjectModel.h"

#include <vector>

namespace tembra {

/// A to-one relationship with its names resolved to numbers.
struct ToOneColumn
{
    int entity;
    int property;
    int destination;
    int inverse; ///< To-many property of the destination; -1 when there is none.
    DeleteRule rule; ///< What deleting the destination does to the record with this column.
};

/// A to-many relationship with its names resolved to numbers.
struct ToManyLink
{
    int entity;
    int property;
    int destination;
    int inverse; ///< Property of the destination: its to-one, or its to-many when joined.
    bool joined; ///< Stored in a join table.
    /// Of the two ends of a join table, the one by which its links are named in memory.
    bool canonical;
    QByteArray joinTable;
    QByteArray ownColumn;
    QByteArray destinationColumn;
};

struct EntityTable
{
    QByteArray table;
    std::vector<QByteArray> columns; ///< By property number, without "id".
    std::vector<ToOneColumn> toOnes;
    std::vector<ToManyLink> toManys;
    std::vector<ToOneColumn> references; ///< To-one columns of any entity that point here.

    const ToOneColumn *toOne(int property) const;
    const ToManyLink &toMany(int property) const;
};

/// An ObjectModel made ready for reading and writing: every name resolved once.
///
/// Stops the program when the model breaks what the store builds on: to-ones point to entities
/// listed earlier, and only a to-many whose inverse is a to-one cascades. So rows are inserted in
/// the order of the entities, deleted in the opposite one, and cascades only lead forward.
class StoreSchema
{
public:
    explicit StoreSchema(const ObjectModel &model);

    const ObjectModel &model() const { return *m_model; }
    int entityCount() const { return int(m_tables.size()); }
    const EntityTable &table(int entity) const { return m_tables[size_t(entity)]; }
    const EntityDescription &entity(int index) const { return m_model->entity(index); }

private:
    void resolveToOnes(int entity);
    void resolveToManys(int entity);

    const ObjectModel *m_model;
    std::vector<EntityTable> m_tables;
};

} // namespace tembra
