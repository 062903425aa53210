#include "Store/Objects/UnwrittenEdits.h"

#include "Store/Schema/ObjectModel.h"

namespace tembra {

LinkKey LinkKey::of(const ToManyDescription &link, qint64 owner, qint64 other)
{
    if (link.canonical)
        return {link.entity, link.property, owner, other};
    return {link.destination, link.inverse, other, owner};
}

} // namespace tembra
