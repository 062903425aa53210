#pragma once

#include "Store/Query/Predicate.h"
#include "Store/Query/SortDescriptor.h"

#include <QByteArray>
#include <QList>

namespace tembra {

/// A question to the store: which records of an entity, in which order.
struct FetchRequest
{
    QByteArray entityName;
    Predicate predicate = {}; ///< None: every record.
    QList<SortDescriptor> sortDescriptors = {};
    int fetchLimit = 0; ///< 0: no limit.
    bool returnsDistinctResults = false;
    bool returnsObjectsAsFaults = true; ///< False: values are read together with the result.
    QList<QByteArray> relationshipKeyPathsForPrefetching = {};
};

} // namespace tembra
