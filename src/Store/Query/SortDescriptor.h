#pragma once

#include <QByteArray>

namespace tembra {

/// An order by one key path of the fetched entity ("date", "session.date"). A missing value sorts
/// first when ascending; texts sort by code point. Ties break on the record's key, ascending.
struct SortDescriptor
{
    QByteArray key;
    bool ascending = true;

    friend bool operator==(const SortDescriptor &, const SortDescriptor &) = default;
};

} // namespace tembra
