#pragma once

#include "Backup/BackupDocument.h"
#include "MainWindow/Counterparts/CounterpartsPaneViewController.h"
#include "ProgramInProcess.h"

#include <QDir>
#include <QTemporaryDir>

namespace tembra {

/// The program, and backups that it is asked to open.
class OpenFilesTest : public QObject
{
    Q_OBJECT

protected:
    void start()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_program = std::make_unique<ProgramInProcess>(m_folder->path());
        QVERIFY(QTest::qWaitForWindowActive(m_program->window));
    }
    void stop()
    {
        m_program.reset();
        m_folder.reset();
    }

    QString package(const QString &name, const QByteArray &json)
    {
        const QString path = m_folder->filePath(name + u".tembrabackup"_s);
        return BackupDocument{json}.write(path) ? path : QString();
    }
    /// A package with one teammate who has the package's name.
    QString package(const QString &name)
    {
        return package(name, "[{\"name\":\"" + name.toUtf8() + "\",\"sessions\":[{}]}]");
    }
    /// A package that cannot be imported: "not there", "a file", "a link", "without data" or
    /// "not JSON".
    QString badPackage(const QString &fault)
    {
        if (fault == u"not JSON")
            return package(u"Bad"_s, R"([{"name":7}])");
        const QString path = m_folder->filePath(u"Bad.tembrabackup"_s);
        if (fault == u"a file") {
            QFile file(path);
            file.open(QIODevice::WriteOnly);
        } else if (fault != u"not there") {
            QDir().mkdir(path);
        }
        if (fault == u"a link")
            QFile::link(u"/dev/zero"_s, path + u"/teammates.json"_s);
        return path;
    }

    void open(const QStringList &packages) { m_program->delegate->openFiles(packages); }
    /// The teammates in the list.
    QStringList names() const
    {
        QStringList names;
        for (const auto &teammate :
             m_program->delegate->counterpartsViewController()->counterparts())
            names.append(teammate->name());
        return names;
    }
    /// The packages that the prompts were about, in turn.
    QStringList askedAbout() const
    {
        QStringList asked;
        for (const QString &text : m_program->alerts->informativeTexts)
            asked.append(text.section(u'\n', 1).section(u'.', 0, 0));
        return asked;
    }
    static int visibleAlerts()
    {
        int count = 0;
        for (QWidget *widget : QApplication::topLevelWidgets())
            count += qobject_cast<Alert *>(widget) && widget->isVisible();
        return count;
    }

    const QString prompt = u"Do you want to import this backup file?"_s;
    const QString couldNotLoad = u"Could not load backup file"_s;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ProgramInProcess> m_program;
};

} // namespace tembra
