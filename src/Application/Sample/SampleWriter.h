#pragma once

#include <QList>

#include <memory>

namespace tembra {

class Counterpart;
class ManagedObjectContext;

/// A believable journal to look at: eight teammates over the two years before sampleDay(), with
/// meetings, ratings, notes and tags. Always the same one. Meetings lie on any day of the week.
class SampleWriter
{
public:
    /// Writes it into an empty store. Returns the teammates; none of it is saved.
    static QList<std::shared_ptr<Counterpart>> write(ManagedObjectContext &context);
};

} // namespace tembra
