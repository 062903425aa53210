#pragma once

#include "Store/Objects/ManagedObjectContext.h"

namespace tembra {

/// How many records a context finds; -1 when it cannot ask.
inline qsizetype recordCount(ManagedObjectContext &context, const FetchRequest &request)
{
    const auto keys = context.fetchKeys(request);
    return keys ? qsizetype(keys->size()) : -1;
}

} // namespace tembra
