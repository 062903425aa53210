#include "Backup/ImportQueue.h"

#include "Backup/BackupDocument.h"
#include "Backup/DetachedCall.h"
#include "Backup/Import.h"
#include "Backup/ImportTexts.h"
#include "Foundation/Files/PackageFile.h"
#include "Foundation/Time/DateFormatting.h"
#include "Toolkit/Alert.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>

namespace tembra {

using namespace Qt::StringLiterals;

ImportQueue::ImportQueue(Import &import, const DateFormatting &dates, QWidget *window,
                         QObject *parent)
    : QObject(parent)
    , m_import(import)
    , m_dates(dates)
    , m_window(window)
{
    connect(&m_import, &Import::finished, this, &ImportQueue::processNext);
}

ImportQueue::~ImportQueue() = default;

void ImportQueue::enqueue(const QStringList &packagePaths)
{
    m_pending += packagePaths;
    processNext();
}

void ImportQueue::processNext()
{
    if (m_isBusy || m_import.isRunning() || m_pending.isEmpty())
        return;
    m_isBusy = true;
    const QString path = m_pending.takeFirst();
    m_inspection = std::make_unique<QObject>();
    Q_EMIT inspectionBegan(
        tr("Looking at “%1” …", "Says what is going on").arg(importTexts::nameOf(path)));
    callDetached<Inspection>(
        m_inspection.get(),
        [path] { return inspectPackageFile(path, BackupDocument::teammatesFilename); },
        [this, path](const Inspection &file) {
            m_inspection.release()->deleteLater();
            Q_EMIT inspectionEnded();
            didInspect(path, file);
        });
}

void ImportQueue::cancelInspection()
{
    if (!m_inspection)
        return;
    m_inspection.reset();
    m_isBusy = false;
    Q_EMIT inspectionEnded();
    processNext();
}

void ImportQueue::didInspect(const QString &packagePath, const Inspection &file)
{
    if (file && *file)
        return ask(packagePath, **file);
    // The alert about this one is closed before the next question.
    if (!file)
        m_import.showImportAlert(u"Could not load file: "_s + file.error().description());
    else
        m_import.importPackage(packagePath); // Its alert says what is missing.
    m_isBusy = false;
    processNext();
}

void ImportQueue::ask(const QString &packagePath, const PackageFileInfo &file)
{
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

void ImportQueue::answered(const QString &packagePath, bool imports)
{
    if (imports)
        m_import.importPackage(packagePath);
    m_isBusy = false;
    processNext();
}

QString ImportQueue::details(const QString &packagePath, const PackageFileInfo &file) const
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
