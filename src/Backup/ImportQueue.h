#pragma once

#include "Foundation/Result.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>

class QWidget;

namespace tembra {

class DateFormatting;
class Import;
struct PackageFileInfo;

/// A queue of backups that were opened from outside (dropped, or named on the command line): asks for
/// each whether to import it, once the import before it has finished.
class ImportQueue final : public QObject
{
    Q_OBJECT

public:
    ImportQueue(Import &import, const DateFormatting &dates, QWidget *window,
                QObject *parent = nullptr);
    ~ImportQueue() override;

    void enqueue(const QStringList &packagePaths);
    /// Stops looking at a package whose folder does not answer, and goes on with the next one.
    void cancelInspection();

Q_SIGNALS:
    /// A package is being looked at, which takes long where its folder does not answer.
    void inspectionBegan(const QString &activity);
    void inspectionEnded();

private:
    using Inspection = Result<std::optional<PackageFileInfo>>;

    void processNext();
    void didInspect(const QString &packagePath, const Inspection &file);
    void ask(const QString &packagePath, const PackageFileInfo &file);
    void answered(const QString &packagePath, bool imports);
    QString details(const QString &packagePath, const PackageFileInfo &file) const;

    Import &m_import;
    const DateFormatting &m_dates;
    QWidget *m_window;
    QStringList m_pending;
    std::unique_ptr<QObject> m_inspection; ///< The context of the inspection in progress.
    bool m_isBusy = false; ///< A package is being inspected, asked about or told about.
};

} // namespace tembra
