#pragma once

#include "Backup/BackgroundTask.h"
#include "Backup/JournalImport.h"
#include "Store/Rows/KeyRanges.h"

#include <QObject>

#include <memory>

class QWidget;

namespace tembra {

class CoreDataInterface;
class ProgressSheet;

/// An import that succeeded, with the keys of all records it inserted.
struct CompletedImport
{
    QString packagePath;
    BackupCounts counts;
    KeyRanges keys;
};

/// Imports backups into the journal, and undoes imports: one at a time, completely or not at all.
///
/// Both are modal to the journal, as they hold the store's one place for writing: editing ends, the
/// main context is saved, and until the end no window takes input and the autosave waits.
class Import final : public QObject
{
    Q_OBJECT

public:
    /// Alerts, panels and the progress sheet belong to @p window.
    Import(CoreDataInterface &coreData, QWidget *window, QObject *parent = nullptr);
    /// Cancels what is in progress.
    ~Import() override;

    /// Asks for a package and imports it.
    void chooseAndImport();
    /// Without effect while an import is in progress.
    void importPackage(const QString &packagePath);
    /// Asks, then deletes exactly what an import inserted.
    void undo(const CompletedImport &import);

    /// True also while an alert tells of a failure, until finished().
    bool isRunning() const { return m_task || m_showsAlert; }
    /// Cancels what is in progress and waits for its end; nothing was changed then.
    void cancelAndWait();

    /// "Could not load backup file", and why.
    void showImportAlert(const QString &informativeText) const;

Q_SIGNALS:
    void imported(const tembra::CompletedImport &import);
    void undone(const tembra::CompletedImport &import);
    /// The user decided against undoing it, or it failed: everything is still there.
    void notUndone(const tembra::CompletedImport &import);
    /// The user cancelled the import or its undoing.
    void cancelled();
    /// After all of these, and after the alert about a failure was closed.
    void finished();

private:
    struct Callbacks;

    void deleteImported(const CompletedImport &import);
    void start(const QString &activity, BackgroundTask::Work work, Callbacks callbacks);
    void finish(const Callbacks &callbacks);
    void endModality();
    void showUndoAlert(const Error &error) const;

    CoreDataInterface &m_coreData;
    QWidget *m_window;
    std::unique_ptr<BackgroundTask> m_task;
    std::unique_ptr<ProgressSheet> m_progressSheet;
    bool m_showsAlert = false;
};

} // namespace tembra
