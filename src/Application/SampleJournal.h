#pragma once

#include <QTimeZone>

namespace tembra {

class Clock;
class ManagedObjectContext;

/// A believable journal to look at: eight teammates over two years up to today, with meetings,
/// ratings, notes and tags. Always the same one, but for the dates.
class SampleJournal
{
public:
    /// Fills an empty store and saves it. Nothing of it can be undone.
    static void fill(ManagedObjectContext &context, const Clock &clock, const QTimeZone &timeZone);
};

} // namespace tembra
