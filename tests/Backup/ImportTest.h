#pragma once

#include "Backup/BackupDocument.h"
#include "Backup/Import.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/JournalFixture.h"
#include "Toolkit/Alert.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWidget>

namespace tembra {

/// A journal, a window for the alerts of imports, and backups to be imported.
class ImportTest : public QObject
{
    Q_OBJECT

protected:
    void start()
    {
        m_journal = std::make_unique<JournalFixture>();
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
    static QByteArray manySessions(int count, const QByteArray &end = {})
    {
        QByteArray json = R"([{"name":"Ana","sessions":[{})";
        for (int i = 1; i < count; ++i)
            json += ",{}";
        return QByteArray(json + end + "]}]");
    }

    bool importAndWait(const QString &path)
    {
        QSignalSpy settled(m_import.get(), &Import::settled);
        m_import->importPackage(path);
        return settled.wait(20'000);
    }
    qint64 sessionCount() const
    {
        return m_journal->context().count({.entityName = "Session"}).value_or(-1);
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
