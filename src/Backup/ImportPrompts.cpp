#include "Backup/ImportPrompts.h"

#include "Backup/BackupDocument.h"
#include "Backup/Import.h"
#include "Foundation/Files/PackageFile.h"
#include "Foundation/Time/DateFormatting.h"
#include "Toolkit/Alert.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QScopedValueRollback>

namespace tembra {

using namespace Qt::StringLiterals;

ImportPrompts::ImportPrompts(Import &import, const DateFormatting &dates, QWidget *window,
                             QObject *parent)
    : QObject(parent)
    , m_import(import)
    , m_dates(dates)
    , m_window(window)
{
    connect(&m_import, &Import::settled, this, &ImportPrompts::askForNext);
}

void ImportPrompts::open(const QStringList &packagePaths)
{
    m_waiting += packagePaths;
    askForNext();
}

void ImportPrompts::askForNext()
{
    if (m_asking || m_import.isRunning() || m_waiting.isEmpty())
        return;
    const QString path = m_waiting.takeFirst();
    const auto file = inspectPackageFile(path, BackupDocument::teammatesFilename);
    if (file && *file) {
        ask(path, **file);
        return;
    }
    {
        // An alert about this one comes before the next question.
        const QScopedValueRollback asking(m_asking, true);
        if (!file)
            m_import.showImportAlert(u"Could not load file: "_s + file.error().description());
        else
            m_import.importPackage(path); // Which says what is missing.
    }
    askForNext();
}

void ImportPrompts::ask(const QString &packagePath, const PackageFileInfo &file)
{
    m_asking = true;
    const AlertContents question{.messageText = tr("Do you want to import this backup file?",
                                                   "Prompt for import dialog"),
                                 .informativeText = details(packagePath, file),
                                 .buttons = {tr("Import", "Import button"),
                                             tr("Cancel", "Cancel button")},
                                 .style = AlertContents::Style::Informational};
    Alert::beginSheet(question, m_window, [guard = QPointer(this), packagePath](int button) {
        if (guard)
            guard->answered(packagePath, button == 0);
    });
}

void ImportPrompts::answered(const QString &packagePath, bool imports)
{
    if (imports)
        m_import.importPackage(packagePath);
    m_asking = false;
    askForNext();
}

QString ImportPrompts::details(const QString &packagePath, const PackageFileInfo &file) const
{
    const QLocale locale;
    const QDateTime modified = QDateTime::fromMSecsSinceEpoch(
        qint64(file.modified.toUnixMilliseconds()));
    return tr("Last modified", "Label for informative text on import") + u": "_s
           + m_dates.displayDate(file.modified) + u", "_s
           + locale.toString(modified.time(), QLocale::ShortFormat) + u'\n'
           + QFileInfo(packagePath).fileName() + u", "_s + locale.formattedDataSize(file.size);
}

} // namespace tembra
