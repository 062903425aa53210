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
    const QString teammates = counts.teammates == 1
                                  ? QCoreApplication::translate("ImportTexts", "1 teammate",
                                                                "How much a backup holds")
                                  : QCoreApplication::translate("ImportTexts", "%1 teammates",
                                                                "How much a backup holds")
                                        .arg(counts.teammates);
    const QString meetings = counts.sessions == 1
                                 ? QCoreApplication::translate("ImportTexts", "1 meeting",
                                                               "How much a backup holds")
                                 : QCoreApplication::translate("ImportTexts", "%1 meetings",
                                                               "How much a backup holds")
                                       .arg(counts.sessions);
    return QCoreApplication::translate("ImportTexts", "%1 and %2",
                                       "%1 is a number of teammates, %2 one of meetings")
        .arg(teammates, meetings);
}

QString nameOf(const QString &packagePath)
{
    return QFileInfo(packagePath).completeBaseName();
}

} // namespace tembra::importTexts
