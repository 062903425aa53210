#pragma once

#include "Backup/BackupDocument.h"
#include "Backup/Import.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "support/RecordCount.h"
#include "Toolkit/Alert.h"
#include "Toolkit/ProgressSheet.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWidget>

namespace tembra {

using namespace Qt::StringLiterals;

/// A journal, a window for the alerts of imports, and backups to be imported.
class ImportTest : public QObject
{
    Q_OBJECT

protected:
    void start()
    {
        m_journal = std::make_unique<JournalFixture>();
        m_journal->settle(); // From here on edits can be undone.
        m_window = std::make_unique<QWidget>();
        m_window->resize(600, 400);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_import = std::make_unique<Import>(m_journal->coreData(), m_window.get());
        m_alerts.clear();
        // Modal alerts: what they say, and a press of their button.
        m_reader = std::make_unique<QTimer>();
        connect(m_reader.get(), &QTimer::timeout, this, &ImportTest::readModalAlert);
        m_reader->start(10);
    }
    void stop()
    {
        m_reader.reset();
        m_import.reset();
        m_window.reset();
        m_journal.reset();
    }

    QString package(const QString &name, const QByteArray &json) const
    {
        const QString path = m_journal->filePath(name + QStringLiteral(".tembrabackup"));
        return BackupDocument{json}.write(path) ? path : QString();
    }
    static QByteArray manySessions(int count)
    {
        return R"([{"name":"Ana","sessions":[{})" + QByteArray(",{}").repeated(count - 1) + "]}]";
    }
    /// A backup that takes much longer to import than any test waits.
    QString endlessPackage() const { return package(u"Long"_s, manySessions(3'000'000)); }

    bool importAndWait(const QString &path)
    {
        QSignalSpy finished(m_import.get(), &Import::finished);
        m_import->importPackage(path);
        return finished.wait(20'000);
    }
    qint64 sessionCount() const
    {
        return recordCount(m_journal->context(), {.entityName = "Session"});
    }

    /// The sheet that is open on the window; null when there is none.
    Alert *sheet() const
    {
        for (Alert *alert : m_window->findChildren<Alert *>()) {
            if (alert->isVisible())
                return alert;
        }
        return nullptr;
    }
    /// The sheet that shows the progress; null when there is none, or none is shown yet.
    ProgressSheet *progressSheet() const
    {
        auto *found = m_window->findChild<ProgressSheet *>();
        return found && found->isVisible() ? found : nullptr;
    }
    static QString textOf(const Alert &alert, const char *label)
    {
        return alert.findChild<QLabel *>(QLatin1StringView(label))->text();
    }

    std::unique_ptr<JournalFixture> m_journal;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<Import> m_import;
    QStringList m_alerts; ///< "message|informative text|buttons" of each modal alert.

private:
    void readModalAlert()
    {
        auto *alert = qobject_cast<Alert *>(QApplication::activeModalWidget());
        if (!alert || alert->windowModality() != Qt::ApplicationModal)
            return;
        QStringList buttons;
        for (const QPushButton *button : alert->buttons())
            buttons.append(button->text());
        m_alerts.append(textOf(*alert, "messageText") + u'|' + textOf(*alert, "informativeText")
                        + u'|' + buttons.join(u','));
        QTest::keyClick(alert, Qt::Key_Return);
    }

    std::unique_ptr<QTimer> m_reader;
};

} // namespace tembra
