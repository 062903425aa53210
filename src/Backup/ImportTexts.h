#pragma once

#include "Backup/JournalImport.h"
#include "Toolkit/Package/PackageType.h"

#include <QString>

namespace tembra::importTexts {

/// What the user sees a backup package as.
PackageType backupType();
/// "8 teammates and 412 meetings".
QString amount(const BackupCounts &counts);
/// "TembraData", for "/home/ana/TembraData.tembrabackup".
QString nameOf(const QString &packagePath);

} // namespace tembra::importTexts
