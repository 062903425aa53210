#pragma once

#include "Backup/JournalImport.h"
#include "Store/Rows/KeyRanges.h"

#include <QObject>

#include <memory>

class QWidget;

namespace tembra {

class CoreDataInterface;

/// What an import brought into the journal, so that it can be taken back.
struct ImportOutcome
{
    QString packagePath;
    BackupCounts counts;
    KeyRanges keys;
};

/// Brings backups into the journal, beside everything that the user goes on doing: one at a time, all
/// of it or nothing. What is not saved yet is saved when the import has ended.
class Import final : public QObject
{
    Q_OBJECT

public:
    /// Alerts and panels belong to @p window.
    Import(CoreDataInterface &coreData, QWidget *window, QObject *parent = nullptr);
    /// Cancels what is going on.
    ~Import() override;

    /// Asks for a package and imports it.
    void chooseAndImport();
    /// Without effect while an import is going on.
    void importPackage(const QString &packagePath);
    /// Asks, then removes exactly what an import brought in.
    void undo(const ImportOutcome &outcome);

    /// Also while an alert tells how it ended, until settled().
    bool isRunning() const { return m_work || m_telling; }
    /// Nothing will have been changed.
    void cancel();
    /// The same, and waits until it is so.
    void stop();

    /// "Could not load backup file", and why.
    void showImportAlert(const QString &informativeText) const;

Q_SIGNALS:
    /// @p activity says what is being done.
    void began(const QString &activity);
    void progressed(double done);
    void ended();
    /// After ended(), when all went well.
    void imported(const tembra::ImportOutcome &outcome);
    void undone(const tembra::ImportOutcome &outcome);
    /// After ended(), when the user wanted no more of it.
    void cancelled();
    /// After all of these, and after an alert about what went wrong was read.
    void settled();

private:
    void removeWhatCameIn(const ImportOutcome &outcome);
    void start(const QString &activity, JournalWork::Work work,
               const std::function<void(const Error &)> &whenFailed,
               const std::function<void()> &whenDone);
    void finish(const std::function<void(const Error &)> &whenFailed,
                const std::function<void()> &whenDone);
    std::unique_ptr<JournalWork> takeWork();
    void showUndoAlert(const Error &error) const;

    CoreDataInterface &m_coreData;
    QWidget *m_window;
    std::unique_ptr<JournalWork> m_work;
    bool m_telling = false;
};

} // namespace tembra
