#pragma once

#include <QLoggingCategory>

namespace tembra {

/// One plain line per event; never the text of a note nor the name of a person.
Q_DECLARE_LOGGING_CATEGORY(storeLog)
Q_DECLARE_LOGGING_CATEGORY(modelLog)
Q_DECLARE_LOGGING_CATEGORY(windowLog)
Q_DECLARE_LOGGING_CATEGORY(applicationLog)
Q_DECLARE_LOGGING_CATEGORY(backupLog)
/// The one that names what it reads, at the debug level, which is off unless somebody asks for it.
Q_DECLARE_LOGGING_CATEGORY(importLog)
Q_DECLARE_LOGGING_CATEGORY(tagsLog)

} // namespace tembra
