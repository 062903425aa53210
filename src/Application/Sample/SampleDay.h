#pragma once

#include <QDate>

namespace tembra {

/// The day that is today in the package of the sample journal. Its hours are those of UTC.
inline QDate sampleDay()
{
    return {2026, 1, 5};
}

} // namespace tembra
