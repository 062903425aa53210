#include "Foundation/Logging.h"

namespace tembra {

Q_LOGGING_CATEGORY(storeLog, "tembra.store")
Q_LOGGING_CATEGORY(modelLog, "tembra.model")
Q_LOGGING_CATEGORY(windowLog, "tembra.window")
Q_LOGGING_CATEGORY(applicationLog, "tembra.application")
Q_LOGGING_CATEGORY(backupLog, "tembra.backup")
Q_LOGGING_CATEGORY(importLog, "tembra.import", QtInfoMsg)
Q_LOGGING_CATEGORY(tagsLog, "tembra.tags")

} // namespace tembra
