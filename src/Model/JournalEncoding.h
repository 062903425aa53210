#pragma once

#include "Foundation/Result.h"

#include <QByteArray>
#include <QList>

#include <memory>

namespace tembra {

class Counterpart;
class ManagedObjectContext;

/// The JSON document of a backup: these teammates in this order, with everything of theirs, edits of
/// this moment included. Fails rather than leaving out what cannot be read.
Result<QByteArray> encodeJournal(ManagedObjectContext &context,
                                 const QList<std::shared_ptr<Counterpart>> &counterparts);

} // namespace tembra
