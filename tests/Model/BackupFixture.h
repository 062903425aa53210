#pragma once

#include "Foundation/Result.h"
#include "support/JournalFixture.h"

#include <QByteArray>
#include <QList>

#include <memory>

namespace tembra {

/// The document of a whole journal, teammates by name.
Result<QByteArray> writeBackup(const JournalFixture &journal);

/// Reads a document into @p context, which is not saved. Of a document that cannot be read, the
/// reason, which the user sees.
Result<QList<std::shared_ptr<Counterpart>>> readBackup(QByteArrayView document,
                                                       ManagedObjectContext &context);

/// A context of its own, as an import has it; on this thread.
std::unique_ptr<ManagedObjectContext> newImportContext(const JournalFixture &journal);

/// Imports a document as the program does, in another thread. Nothing of it is there on failure.
Result<void> importBackup(QByteArrayView document, const JournalFixture &journal);

/// The document with "Entity" in place of each URI: the same for every store.
QByteArray withoutKeys(QByteArray document);

/// Where the record lies in its store.
QByteArray uriOf(const ManagedObject &record);

} // namespace tembra
