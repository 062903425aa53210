#pragma once

#include <QObject>
#include <QStringList>

class QWidget;

namespace tembra {

class DateFormatting;
class Import;
struct PackageFileInfo;

/// Asks before backups that were opened from outside (dropped, named on the command line) are
/// imported: one after the other, each when the import before it has ended.
class ImportPrompts final : public QObject
{
    Q_OBJECT

public:
    ImportPrompts(Import &import, const DateFormatting &dates, QWidget *window,
                  QObject *parent = nullptr);

    void open(const QStringList &packagePaths);

private:
    void askForNext();
    void ask(const QString &packagePath, const PackageFileInfo &file);
    void answered(const QString &packagePath, bool imports);
    QString details(const QString &packagePath, const PackageFileInfo &file) const;

    Import &m_import;
    const DateFormatting &m_dates;
    QWidget *m_window;
    QStringList m_waiting;
    bool m_asking = false;
};

} // namespace tembra
