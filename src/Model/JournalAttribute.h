#pragma once

#include "Store/Schema/ObjectModel.h"

#include <array>

namespace tembra {

enum class InBackup { No, Yes };

/// One stored attribute of an entity of the journal. The entity's `attributes` list them all, and
/// everything that goes through attributes is driven by that list: the columns of the store, what
/// is written to a backup and what is read from one.
struct JournalAttribute
{
    int property; ///< The enumerator of the class, which is the position in the list.
    const char *name; ///< Of the column, the Q_PROPERTY and the key in a backup.
    AttributeType type;
    InBackup inBackup = InBackup::Yes;
    int sinceVersion = 1; ///< The schema version that added the column.
};

/// Whether every attribute stands at the position that its property says.
template<size_t size>
constexpr bool standAtTheirPositions(const std::array<JournalAttribute, size> &attributes)
{
    for (size_t position = 0; position < size; ++position) {
        if (attributes[position].property != int(position))
            return false;
    }
    return true;
}

} // namespace tembra
