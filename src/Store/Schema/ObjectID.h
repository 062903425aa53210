#pragma once

#include <QHashFunctions>
#include <QMetaType>

#include <compare>

namespace tembra {

/// The identity of a stored record: its entity (index in the ObjectModel) and its row key.
/// Keys are given once and never again, whatever is deleted in between. Key 0 means no record.
struct ObjectID
{
    int entity = -1;
    qint64 key = 0;

    bool isNull() const { return key == 0; }

    friend auto operator<=>(const ObjectID &, const ObjectID &) = default;
    friend size_t qHash(const ObjectID &id, size_t seed = 0)
    {
        return qHashMulti(seed, id.entity, id.key);
    }
};

} // namespace tembra

Q_DECLARE_METATYPE(tembra::ObjectID)
