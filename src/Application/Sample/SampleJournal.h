#pragma once

#include "Foundation/Result.h"

#include <QTimeZone>

namespace tembra {

class Clock;
class CoreDataInterface;

/// The journal of `--sample`: a backup that the program carries inside. Always the same one, but for
/// the dates.
class SampleJournal
{
public:
    /// Imports the backup into an empty store, by way of a package in @p directory, and saves it.
    /// Its last day becomes today: each meeting keeps its time of day, in @p timeZone, and moves from
    /// a weekend to the Friday before. Nothing of it can be undone.
    static Result<void> importInto(CoreDataInterface &coreData, const QString &directory,
                                   const Clock &clock, const QTimeZone &timeZone);

    /// The backup's document.
    static QByteArray document();
};

} // namespace tembra
