#pragma once

#include "Store/Schema/ObjectModel.h"

namespace tembra {

struct JournalServices;

/// The four entities of the journal (Counterpart, Tag, Session, Note), their relationships, delete
/// rules and schema. @p services must outlive every store made with the model.
ObjectModel makeJournalModel(const JournalServices &services);

} // namespace tembra
