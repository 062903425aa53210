#include "Backup/ImportTexts.h"

#include "Backup/BackupDocument.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace tembra::importTexts {

PackageType backupType()
{
    return {BackupDocument::tembrabackup,
            QCoreApplication::translate("ImportTexts", "Tembra backup",
                                        "What a backup package is called")};
}

QString amount(const BackupCounts &counts)
{
    const QString teammates = QCoreApplication::translate("ImportTexts", "%n teammate(s)",
                                                          "How much a backup holds",
                                                          int(counts.teammates));
    const QString meetings = QCoreApplication::translate("ImportTexts", "%n meeting(s)",
                                                         "How much a backup holds",
                                                         int(counts.sessions));
    return QCoreApplication::translate("ImportTexts", "%1 and %2",
                                       "%1 is a number of teammates, %2 one of meetings")
        .arg(teammates, meetings);
}

QString nameOf(const QString &packagePath)
{
    return QFileInfo(packagePath).completeBaseName();
}

} // namespace tembra::importTexts
